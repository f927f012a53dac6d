#!/usr/bin/env python3
"""Writes tools/macos-sdk/lib/libc++.tbd: what the system's C++ library of macOS 11 exports.

usage: libcxx_stub.py LIBCXX >libc++.tbd

LIBCXX is the folder libcxx of LLVM 13's sources, which lists the symbols of the
library on each system in lib/abi. Its headers say that macOS 11 has the library
of LLVM 11 (_LIBCPP_INTRODUCED_IN_LLVM_11), so what its change log added later is
left out. Debian has the sources: apt-get source --download-only llvm-toolchain-13
"""

import ast
import pathlib
import re
import sys

ABI = "{}-apple-darwin.libcxxabi.v1.stable.exceptions.no_new_in_libcxx.abilist"
# Symbols that moved between the two libraries, which this one exports all the same.
MOVED = ("Define new/delete in libc++abi only", "Simplify how we re-export")


def exported(abi, architecture):
    lines = (abi / ABI.format(architecture)).read_text().splitlines()
    entries = map(ast.literal_eval, lines)
    return {entry["name"] for entry in entries if entry["is_defined"]}


def added_after_11(abi):
    log = (abi / "CHANGELOG.TXT").read_text()
    newer = re.search(r"^Version 12\.0$(.*?)^Version 10\.0$", log, re.M | re.S)[1]
    changes = re.split(r"^\* ", newer, flags=re.M)[1:]
    return {
        symbol
        for change in changes
        if not any(moved in change for moved in MOVED)
        for symbol in re.findall(r"^  Symbol added: (__\S+)$", change, re.M)
    }


def stanza(targets, symbols):
    names = ",\n".join(f"        {name}" for name in sorted(symbols))
    return f"  - targets:         [ {targets} ]\n    symbols:         [\n{names} ]\n"


def main():
    abi = pathlib.Path(sys.argv[1]) / "lib/abi"
    newer = added_after_11(abi)
    arm64 = exported(abi, "arm64") - newer
    x86_64 = exported(abi, "x86_64") - newer
    print("--- !tapi-tbd")
    print("# Made by tools/macos/libcxx_stub.py from the lists of LLVM 13, Apache-2.0 WITH LLVM-exception.")
    print("tbd-version:     4")
    print("targets:         [ x86_64-macos, arm64-macos ]")
    print("install-name:    '/usr/lib/libc++.1.dylib'")
    print("exports:")
    print(stanza("x86_64-macos, arm64-macos", arm64 & x86_64), end="")
    for target, only in (("x86_64-macos", x86_64 - arm64), ("arm64-macos", arm64 - x86_64)):
        if only:
            print(stanza(target, only), end="")
    print("...")


main()
