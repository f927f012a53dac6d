#!/usr/bin/env python3
"""Looks whether an application is what bundle.py has listed, and copies of it the same, and whether it can start on every
Mac that it is for. Fails if anything is amiss.

usage: verify.py APPLICATION [LIST [COPY…]]    without a list, one that was made on a Mac
"""

import hashlib
import json
import os
import pathlib
import plistlib
import stat
import sys
import xml.parsers.expat

import macho
import signature

MINIMUM = (11, 5)
BUILT_FOR = (13, 0)  # in our own programs; see install_tools in get.sh
# What is None here would keep the window away.
INFORMATION = {"CFBundleExecutable": "Orvane Installer", "CFBundleIconFile": "AppIcon",
               "CFBundleIdentifier": "com.tessal.installer.Orvane", "CFBundlePackageType": "APPL",
               "LSMinimumSystemVersion": "11.5", "NSPrincipalClass": "NSApplication",
               "LSBackgroundOnly": None, "LSUIElement": None}
SDK = pathlib.Path(__file__).parent.parent / "macos-sdk"
SYSTEM_LIBRARIES = (SDK / "system-libraries.txt").read_text().splitlines()
problems = []
problem = problems.append


def check_libraries(where, part, path, program, made_here):
    """Whether each is the system's or lies inside. On a Mac the linker has looked for the system's."""
    names = macho.loaded_libraries(part)
    for name in names:
        is_system = name in SYSTEM_LIBRARIES or not made_here and name.startswith(("/System/Library/", "/usr/lib/"))
        if not is_system and not macho.lies_inside(name, part, path, program):
            problem(f"{where}: loads {name}, which is neither the system's nor inside")
        if names.count(name) > 1:
            problem(f"{where}: names {name} twice")


def check_code(path, application, program, made_here):
    is_ours = path.parent == program.parent
    shown = path.relative_to(application / "Contents")
    parts = macho.slices(path)
    if set(parts) != {"arm64", "x86_64"}:
        problem(f"{shown}: is for {', '.join(sorted(parts))}")
    for architecture, part in parts.items():
        where = f"{shown} ({architecture})"
        version = part.build_version
        minimum = tuple(version.minos[:2]) if version else None
        if minimum is None or minimum > MINIMUM or (is_ours and minimum != MINIMUM):
            problem(f"{where}: is for macOS {minimum} or later")
        elif is_ours and made_here and tuple(version.sdk[:2]) != BUILT_FOR:
            problem(f"{where}: says that it was made for macOS {version.sdk}")
        if not part.has_uuid:
            problem(f"{where}: has no identifier")
        for rpath in macho.rpaths(part):
            inside = macho.expand(rpath, path, program)
            if not rpath.startswith("@") or not pathlib.Path(inside).is_relative_to(application):
                problem(f"{where}: looks for libraries outside: {rpath}")
        check_libraries(where, part, path, program, made_here)


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
        there, listed = found.get(name, ["nothing"]), wanted.get(name, ["nothing"])
        if there != listed:
            problem(f"{where}{name} is {' '.join(there)}, not {' '.join(listed)}")


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


def stop_at_problems():
    for text in problems:
        print(f"verify: {text}", file=sys.stderr)
    if problems:
        sys.exit(1)


def main():
    application = pathlib.Path(sys.argv[1]).resolve()
    made_here = len(sys.argv) > 2
    if made_here:
        listed = json.loads(pathlib.Path(sys.argv[2]).read_text())
        if (application / "Contents/_CodeSignature").exists():
            listed = as_signed(listed, application)
        check_content(application, listed)
        for copy in sys.argv[3:]:
            check_content(pathlib.Path(copy), content(application), f"{copy}: ")
        stop_at_problems()
        print(f"{len(listed)} files, folders and links as they were put in")
    check_information(application)
    program = application / "Contents/MacOS" / INFORMATION["CFBundleExecutable"]
    if not macho.slices(program):
        problem(f"{program} is no program for macOS")
    stop_at_problems()
    code = list(filter(macho.is_macho, application.rglob("*")))
    for path in code:
        check_code(path, application, program, made_here)
    signature.check(application, program, problem)
    stop_at_problems()
    print(f"{len(code)} programs and libraries, which find each other on macOS 11.5 and later")


main()
