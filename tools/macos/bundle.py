#!/usr/bin/env python3
"""Puts the application together: what was built for each architecture, and of Qt its frameworks, the plug-in for the
window system and the QML modules that the screens import. Writes beside it, to list.json, what has to lie in it.

usage: bundle.py APPLICATION QT SCREENS SCANNER    beside APPLICATION lie arm64 and x86_64
"""

import base64
import csv
import hashlib
import json
import os
import pathlib
import shutil
import subprocess
import sys

import macho

PROGRAMS = ["Orvane Installer", "orvane-install"]
PLUGIN = "platforms/libqcocoa.dylib"
QT_CONF = "[Paths]\nPlugins = PlugIns\nQmlImports = Resources/qml\n"


def imported_modules(qt, screens, scanner):
    command = [scanner, "-rootPath", screens, "-importPath", qt / "qml"]
    found = json.loads(subprocess.run(command, check=True, capture_output=True).stdout)
    modules = [module for module in found if "path" in module]
    if not any(module["name"] == "QtQuick" for module in modules):
        sys.exit(f"bundle.py: {screens} imports no QtQuick?")
    return modules


def frameworks_of(code, qt):
    """All frameworks of Qt that these files load, and those that they load."""
    found, left = set(), list(code)
    while left:
        for part in macho.slices(left.pop()).values():
            for name in macho.loaded_libraries(part):
                if name.startswith("@rpath/") and name not in found:
                    found.add(name)
                    left.append(qt / "lib" / name[len("@rpath/"):])
    return {name.split("/")[1] for name in found}


def parts(builds, built, qt, screens, scanner):
    """What the application consists of, by path: files to copy, and where links lead."""
    files = {str(path.relative_to(built)): path for path in built.rglob("*")
             if path.is_file() and path.parent.name != "MacOS"}
    links = {}
    for program in PROGRAMS:
        files[f"Contents/MacOS/{program}"] = builds / program
        lipo = shutil.which("llvm-lipo-14") or "llvm-lipo"
        each = [builds / architecture / built.name / "Contents/MacOS" / program for architecture in ("arm64", "x86_64")]
        subprocess.run([lipo, "-create", *each, "-output", builds / program], check=True)
    files["Contents/Resources/qt.conf"] = builds / "qt.conf"
    (builds / "qt.conf").write_text(QT_CONF)
    files[f"Contents/PlugIns/{PLUGIN}"] = qt / "plugins" / PLUGIN
    for module in imported_modules(qt, screens, scanner):
        # Code lies with other code, and a link to it where the module is.
        place, plugin = f"Contents/Resources/qml/{module['relativePath']}", f"lib{module['plugin']}.dylib"
        files[f"{place}/qmldir"] = pathlib.Path(module["path"], "qmldir")
        files[f"Contents/PlugIns/quick/{plugin}"] = pathlib.Path(module["path"], plugin)
        links[f"{place}/{plugin}"] = f"{place.count('/') * '../'}PlugIns/quick/{plugin}"
    code = [path for name, path in files.items() if name.startswith(("Contents/MacOS/", "Contents/PlugIns/"))]
    for framework in frameworks_of(code, qt):
        place, name = f"Contents/Frameworks/{framework}", framework.removesuffix(".framework")
        for part in (name, "Resources/Info.plist"):
            files[f"{place}/Versions/A/{part}"] = qt / "lib" / framework / "Versions/A" / part
        links |= {f"{place}/Versions/Current": "A", f"{place}/{name}": f"Versions/Current/{name}",
                  f"{place}/Resources": "Versions/Current/Resources"}
    return files, links


def check_package(qt, used):
    """Whether those of the files that are Qt's are as its package says."""
    record = next(qt.parents[1].glob("*.dist-info/RECORD"))
    for name, digest, _ in csv.reader(record.open()):
        path = qt.parents[1] / name
        if path in used and hashlib.sha256(path.read_bytes()).digest() != base64.urlsafe_b64decode(digest[7:] + "="):
            sys.exit(f"bundle.py: {path} is not as its package says")


def main():
    application, qt, screens, scanner = map(pathlib.Path, sys.argv[1:])
    builds = application.parent
    files, links = parts(builds, builds / "arm64" / application.name, qt, screens, scanner)
    check_package(qt, files.values())
    os.umask(0o022)
    shutil.rmtree(application, ignore_errors=True)
    listed = {}
    for name, source in files.items():
        place, mode = application / name, 0o755 if "/MacOS/" in name else 0o644
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, place)
        place.chmod(mode)
        listed[name] = ["file", f"{mode:o}", macho.hash_of(source)]
    for name, target in links.items():
        (application / name).symlink_to(target)
        listed[name] = ["link to", target]
    for name in list(listed):
        listed |= {str(folder): ["folder", "755"] for folder in list(pathlib.Path(name).parents)[:-1]}
    (builds / "list.json").write_text(json.dumps(listed))


main()
