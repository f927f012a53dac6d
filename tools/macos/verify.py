#!/usr/bin/env python3
"""Looks whether an application can start on every Mac that it is for, prints a table of
its Mach-O files, and fails if anything is amiss.

usage: verify.py APPLICATION LIBSYSTEM-STUB [ARCHIVE]
"""

import hashlib
import os
import pathlib
import plistlib
import stat
import subprocess
import sys
import tempfile

import lief
import macho
import signature

MINIMUM = (11, 5)
BUILT_FOR = (13, 0)  # in our own programs; see install_tools in get.sh
NO_LIBRARY = {0: "itself", 253: "the main executable", 254: "any library", 255: "the main executable"}
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
        if inside is None and name not in stubs.known:
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
        elif is_ours or name.startswith("/usr/lib/libc++") or name.startswith("/usr/lib/libSystem"):
            exported = stubs.symbols.get(name, {}).get(architecture, ())
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
        if is_ours and tuple(part.build_version.sdk[:2]) != BUILT_FOR:
            problem(f"{where}: says that it was made for macOS {part.build_version.sdk}")
        if not part.has_uuid:
            problem(f"{where}: has no identifier")
        if architecture == "arm64" and not part.has_code_signature:
            problem(f"{where}: is not signed")
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


def check_information(application):
    contents = application / "Contents"
    info = plistlib.loads((contents / "Info.plist").read_bytes())
    for path in (
        contents / "MacOS" / info["CFBundleExecutable"],
        contents / "Resources" / (info["CFBundleIconFile"] + ".icns"),
        contents / "MacOS/orvane-install",
        contents / "Resources/install.sh",
        contents / "Resources/Orvane.zip",
    ):
        if not path.is_file():
            problem(f"there is no {path.relative_to(application)}")
    if info["LSMinimumSystemVersion"] != ".".join(map(str, MINIMUM)):
        problem(f"Info.plist asks for macOS {info['LSMinimumSystemVersion']}")
    for framework in (contents / "Frameworks").iterdir():
        inner = plistlib.loads((framework / "Resources/Info.plist").read_bytes())
        if not (framework / inner["CFBundleExecutable"]).is_file():
            problem(f"{framework.name} lacks its code")
    return contents / "MacOS" / info["CFBundleExecutable"]


def check_links(application):
    for folder, folders, files in os.walk(application):
        for name in folders + files:
            path = pathlib.Path(folder, name)
            if not path.is_symlink():
                continue
            target = pathlib.Path(os.path.realpath(path))
            if path.readlink().is_absolute() or not target.is_relative_to(application):
                problem(f"{path} leads outside")
            elif not target.exists():
                problem(f"{path} leads nowhere")


def content(root):
    """What an archive must keep of a folder: names, links, modes and bytes."""
    found = {}
    for folder, folders, files in os.walk(root):
        for name in folders + files:
            path = pathlib.Path(folder, name)
            if path.is_symlink():
                kept = ("link", os.readlink(path))
            elif path.is_dir():
                kept = ("folder", stat.S_IMODE(path.stat().st_mode))
            else:
                digest = hashlib.sha256(path.read_bytes()).hexdigest()
                kept = ("file", stat.S_IMODE(path.stat().st_mode), digest)
            found[str(path.relative_to(root))] = kept
    return found


def check_archive(application, archive):
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["unzip", "-q", archive, "-d", folder], check=True)
        packed = content(pathlib.Path(folder, application.name))
    kept = content(application)
    for name in sorted(kept.keys() | packed.keys()):
        if kept.get(name) != packed.get(name):
            problem(f"the archive has {name} as {packed.get(name)}, not {kept.get(name)}")
    print(f"{archive}: {len(packed)} files, folders and links as they are in the application")


def main():
    lief.logging.disable()
    application = pathlib.Path(sys.argv[1]).resolve()
    stubs = macho.Stubs(sys.argv[2])
    program = check_information(application)
    check_links(application)
    print(f"{'':58} {'':7} {'macOS':6} libraries      symbols")
    print(f"{'file':58} {'for':7} {'from':6} {'inside':>6} {'system':>7} {'found':>8} {'trusted':>8}")
    for path in sorted(application.rglob("*")):
        if macho.is_macho(path):
            check_code(path, application, program, stubs)
    signature.check(application, program, problem)
    if len(sys.argv) > 3:
        check_archive(application, sys.argv[3])
    for text in problems:
        print(f"verify: {text}", file=sys.stderr)
    sys.exit(1 if problems else 0)


main()
