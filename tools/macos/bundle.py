#!/usr/bin/env python3
"""Puts into the application what it needs of Qt: its frameworks, the plug-in for the
window system, and the QML modules that the screens import.

usage: bundle.py APPLICATION QT SCREENS SCANNER
"""

import json
import pathlib
import shutil
import subprocess
import sys

import macho

PLUGINS = ["platforms/libqcocoa.dylib"]
QT_CONF = "[Paths]\nPlugins = PlugIns\nQmlImports = Resources/qml\n"


def copy_module(module, contents, qt):
    """Plug-ins lie with the other code, and a link to each where the module is."""
    place = contents / "Resources/qml" / module["relativePath"]
    place.mkdir(parents=True)
    source = pathlib.Path(module["path"])
    shutil.copy2(source / "qmldir", place)
    plugin = f"lib{module['plugin']}.dylib"
    code = contents / "PlugIns/quick" / plugin
    code.parent.mkdir(parents=True, exist_ok=True)
    shutil.copy2(source / plugin, code)
    up = len(place.relative_to(contents).parts) * "../"
    (place / plugin).symlink_to(f"{up}PlugIns/quick/{plugin}")
    return code


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


def main():
    application, qt, screens, scanner = map(pathlib.Path, sys.argv[1:])
    contents = application / "Contents"
    code = [path for path in (contents / "MacOS").iterdir()]
    for plugin in PLUGINS:
        copy = contents / "PlugIns" / plugin
        copy.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(qt / "plugins" / plugin, copy)
        code.append(copy)
    for module in imported_modules(qt, screens, scanner):
        code.append(copy_module(module, contents, qt))
    for framework in sorted(frameworks_of(code, qt)):
        shutil.copytree(qt / "lib" / framework, contents / "Frameworks" / framework, symlinks=True)
    (contents / "Resources/qt.conf").write_text(QT_CONF)


main()
