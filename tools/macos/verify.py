#!/usr/bin/env python3
"""Looks whether an application is what bundle.py has listed, signed or not, and whether it can start on every Mac that
it is for. Fails if anything is amiss.

usage: verify.py APPLICATION [LIST]    without a list, one that was made on a Mac
"""

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
# What is missing here would keep the window away, or leave nothing to install.
NEEDED = ["MacOS/Orvane Installer", "MacOS/orvane-install", "PlugIns/platforms/libqcocoa.dylib",
          "Resources/AppIcon.icns", "Resources/install.sh", "Resources/qml/QtQuick/qmldir", "Resources/qt.conf"]
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
            kept = ["file", mode, macho.hash_of(path)]
        else:
            kept = ["folder" if path.is_dir() else "special", mode]
        found[str(path.relative_to(root))] = kept
    return found


def check_content(application, wanted):
    """Whether that lies there which should, and nothing else. What signing adds is looked at later."""
    found = content(application)
    added = ("_CodeSignature", "CodeResources") if (application / "Contents/_CodeSignature").exists() else ()
    for name in sorted(found.keys() | wanted.keys()):
        there, listed = found.get(name, ["nothing"]), wanted.get(name, ["nothing"])
        if there != listed and not name.endswith(added):
            problem(f"{name} is {' '.join(there)}, not {' '.join(listed)}")


def check_information(application):
    """What the system reads before anything else."""
    try:
        info = plistlib.loads((application / "Contents/Info.plist").read_bytes())
    except (OSError, ValueError, xml.parsers.expat.ExpatError) as error:
        return problem(f"Info.plist cannot be read: {error}")
    for key, wanted in INFORMATION.items():
        if info.get(key) != wanted:
            problem(f"Info.plist: {key} is {info.get(key)}, not {wanted}")


def check_parts(application):
    for name in NEEDED:
        path = application / "Contents" / name
        if not path.is_file() or path.stat().st_size == 0:
            problem(f"{name} is missing or empty")
        elif name.startswith("MacOS/") and not (os.access(path, os.X_OK) and macho.slices(path)):
            problem(f"{name} cannot be started")
    for path in application.rglob("*"):
        if not path.exists():
            problem(f"{path.relative_to(application)} leads nowhere")


def check_one_qt(code):
    """What a file is of Qt, and what it was linked with, says of which version."""
    versions = {".".join(map(str, library.current_version)) for path in code for part in macho.slices(path).values()
                for library in part.libraries if "/Qt" in library.name}
    if len(versions) != 1:
        problem(f"Qt is there as {' and '.join(sorted(versions))}")


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
        check_content(application, listed)
        stop_at_problems()
        print(f"{len(listed)} files, folders and links as they were put in")
    check_information(application)
    check_parts(application)
    stop_at_problems()
    program = application / "Contents" / NEEDED[0]
    code = list(filter(macho.is_macho, application.rglob("*")))
    for path in code:
        check_code(path, application, program, made_here)
    check_one_qt(code)
    signature.check(application, program, problem)
    stop_at_problems()
    print(f"{len(code)} programs and libraries, which find each other on macOS 11.5 and later")


main()
