#!/usr/bin/env python3
"""Looks whether an application is what bundle.py has listed, and copies of it the same, and whether it can start on every
Mac that it is for. Prints a table of its Mach-O files, and fails if anything is amiss.

usage: verify.py APPLICATION [LIST [LIBSYSTEM-STUB [COPY…]]]    without a list, one that was made on a Mac
"""

import hashlib
import json
import os
import pathlib
import plistlib
import stat
import sys
import xml.parsers.expat

import lief
import macho
import signature

MINIMUM = (11, 5)
BUILT_FOR = (13, 0)  # in our own programs; see install_tools in get.sh
NO_LIBRARY = {0: "itself", 253: "the main executable", 254: "any library", 255: "the main executable"}
INFORMATION = {"CFBundleExecutable": "Orvane Installer", "CFBundleIconFile": "AppIcon",
               "CFBundleIdentifier": "com.tessal.installer.Orvane", "CFBundlePackageType": "APPL",
               "LSMinimumSystemVersion": "11.5", "NSPrincipalClass": "NSApplication"}
problems = []


def problem(text):
    problems.append(text)


def minimum_of(part):
    if part.has_build_version:
        return tuple(part.build_version.minos[:2])
    return tuple(part.version_min.version[:2]) if part.has_version_min else None


def check_libraries(where, part, path, program, stubs):
    """What stands behind each install name: a file inside, or None for the system's."""
    names = macho.loaded_libraries(part)
    for name in {name for name in names if names.count(name) > 1}:
        problem(f"{where}: names {name} twice")
    found = []
    for name in names:
        inside = macho.resolve(name, part, path, program)
        if inside is None and not stubs.has(name):
            problem(f"{where}: loads {name}, which is neither the system's nor inside")
        found.append(inside)
    return names, found


def check_symbols(where, part, architecture, libraries, stubs, is_ours):
    """How many symbols were looked up, and how many of the system's could not be."""
    names, files = libraries
    seen = trusted = 0
    for symbol in part.symbols:
        if symbol.category != lief.MachO.Symbol.CATEGORY.UNDEFINED:
            continue
        ordinal = symbol.library_ordinal
        if not 1 <= ordinal <= len(names):
            problem(f"{where}: {symbol.name} comes from {NO_LIBRARY.get(ordinal, ordinal)}")
            continue
        name, file = names[ordinal - 1], files[ordinal - 1]
        if file is not None:
            exported = macho.exports(file, architecture)
        elif stubs.made_here and name in stubs.symbols and (is_ours or name.startswith(("/usr/lib/libc++", "/usr/lib/libSystem"))):
            exported = stubs.symbols[name][architecture]
        else:
            trusted += 1
            continue
        seen += 1
        if symbol.name not in exported:
            problem(f"{where}: {name} does not export {symbol.name}")
    return seen, trusted


def check_code(path, application, program, stubs):
    is_ours = path.parent == program.parent
    shown = path.relative_to(application / "Contents")
    parts = macho.slices(path)
    if set(parts) != {"arm64", "x86_64"}:
        problem(f"{shown}: is for {', '.join(sorted(parts))}")
    for architecture, part in sorted(parts.items()):
        where = f"{shown} ({architecture})"
        minimum = minimum_of(part)
        if minimum is None or minimum > MINIMUM or (is_ours and minimum != MINIMUM):
            problem(f"{where}: is for macOS {minimum} or later")
        if is_ours and stubs.made_here and tuple(part.build_version.sdk[:2]) != BUILT_FOR:
            problem(f"{where}: says that it was made for macOS {part.build_version.sdk}")
        if not part.has_uuid:
            problem(f"{where}: has no identifier")
        for rpath in macho.rpaths(part):
            inside = macho.expand(rpath, path, program)
            if not rpath.startswith("@") or not pathlib.Path(inside).is_relative_to(application):
                problem(f"{where}: looks for libraries outside: {rpath}")
        libraries = check_libraries(where, part, path, program, stubs)
        seen, trusted = check_symbols(where, part, architecture, libraries, stubs, is_ours)
        inside = sum(file is not None for file in libraries[1])
        print(
            f"{str(shown):58} {architecture:7} {'.'.join(map(str, minimum or ())):6}"
            f"{inside:7} {len(libraries[0]) - inside:7} {seen:8} {trusted:8}"
        )


def content(root):
    """Of everything below a folder, by path: its kind, and its mode and hash, or where it leads."""
    found = {}
    for path in root.rglob("*"):
        mode = f"{stat.S_IMODE(path.lstat().st_mode):o}"
        if path.is_symlink():
            kept = ["link to", os.readlink(path)]
        elif path.is_file():
            kept = ["file", mode, hashlib.sha256(path.read_bytes()).hexdigest()]
        else:
            kept = ["folder" if path.is_dir() else "special", mode]
        found[str(path.relative_to(root))] = kept
    return found


def check_content(root, wanted, where=""):
    """Whether that lies there which should, and nothing else."""
    found = content(root)
    for name in sorted(found.keys() | wanted.keys()):
        there, listed = found.get(name), wanted.get(name)
        if there is None:
            problem(f"{where}there is no {name}")
        elif listed is None:
            problem(f"{where}{name} does not belong there")
        elif there[:2] != listed[:2]:
            problem(f"{where}{name} is a {' '.join(there[:2])}, not a {' '.join(listed[:2])}")
        elif there != listed:
            problem(f"{where}{name} has another content")


def as_signed(listed, application):
    """The list as signing leaves it: it changes code and adds seals, and both are looked at later."""
    found = content(application)
    return listed | {name: there for name, there in found.items()
                     if "_CodeSignature" in name or there[:2] == listed.get(name, [])[:2] and macho.is_macho(application / name)}


def check_information(application):
    """What the system reads before anything else."""
    try:
        info = plistlib.loads((application / "Contents/Info.plist").read_bytes())
    except (OSError, ValueError, xml.parsers.expat.ExpatError) as error:
        return problem(f"Info.plist cannot be read: {error}")
    for key, wanted in INFORMATION.items():
        if info.get(key) != wanted:
            problem(f"Info.plist: {key} is {info.get(key)}, not {wanted}")
    for key in ("LSBackgroundOnly", "LSUIElement"):
        if key in info:
            problem(f"Info.plist: {key} keeps the window away")


def stop_at_problems():
    for text in problems:
        print(f"verify: {text}", file=sys.stderr)
    if problems:
        sys.exit(1)


def main():
    application = pathlib.Path(sys.argv[1]).resolve()
    if len(sys.argv) > 2:
        listed = json.loads(pathlib.Path(sys.argv[2]).read_text())
        if (application / "Contents/_CodeSignature").exists():
            listed = as_signed(listed, application)
        check_content(application, listed)
        stop_at_problems()
        for copy in sys.argv[4:]:
            check_content(pathlib.Path(copy), content(application), f"{copy}: ")
        print(f"{len(listed)} files, folders and links as they were put in")
    check_information(application)
    program = application / "Contents/MacOS" / INFORMATION["CFBundleExecutable"]
    if not macho.is_macho(program):
        problem(f"{program} is no program for macOS")
    stop_at_problems()
    stubs = macho.Stubs(sys.argv[3:4])
    print(f"{'':58} {'':7} {'macOS':6} libraries      symbols")
    print(f"{'file':58} {'for':7} {'from':6} {'inside':>6} {'system':>7} {'found':>8} {'trusted':>8}")
    for path in sorted(application.rglob("*")):
        if macho.is_macho(path):
            check_code(path, application, program, stubs)
    signature.check(application, program, problem)
    stop_at_problems()


main()
