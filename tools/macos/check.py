#!/usr/bin/env python3
"""Looks at the macOS side of a build for macOS as closely as a Mac's tools would.

usage: check.py analyse BUILD    the static analyser over platform/, with no finding
       check.py prove BUILD      puts one mistake of each kind in, damages the application beside BUILD in each way, and
                                 shows that all of it is seen
"""

import concurrent.futures
import functools
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

# The toolkit's objects are owned by their parents, which the analyser does not know.
ANALYSER = shlex.split("--analyze -Qunused-arguments -Xclang -analyzer-werror -Xclang -analyzer-checker=nullability"
                       " -Xclang -analyzer-disable-checker=cplusplus.NewDeleteLeaks")

# What, the file, what stands there, the mistake, who catches it, and by which words.
MISTAKES = [
    ("a misspelt function", "text_input_sources.cpp",
     "TISEnableInputSource(", "TISEnableInputSourse(",
     "compiler", "undeclared identifier 'TISEnableInputSourse'"),
    ("a misspelt method", "workspace.mm", " openURL:", " openUrl:",
     "compiler", "no visible @interface .* declares the selector 'openUrl:'"),
    ("a misspelt action", "standard_menu.mm", "@selector(hide:)", "@selector(hides:)",
     "compiler", "undeclared selector 'hides:'"),
    ("an argument of a wrong type", "preferences.cpp",
     "CFPreferencesSynchronize(toCfString(application)",
     "CFPreferencesSynchronize(toCfUrl(application, false)",
     "compiler", "no matching function for call to 'CFPreferencesSynchronize'"),
    ("nil where none may be", "admin_script.mm",
     "initWithSource:toNSString(source)", "initWithSource:nil",
     "compiler", "null passed to a callee that requires a non-null argument"),
    ("a method of macOS 14", "application.mm", "activateIgnoringOtherApps:YES", "activate",
     "compiler", "only available on macOS 14.0 or newer"),
    ("a library call newer than macOS 11", "file_root.cpp", "namespace platform {",
     "#include <charconv>\nnamespace platform {\n"
     "auto text(char* to) { return std::to_chars(to, to + 9, 0.5); }",
     "compiler", "'to_chars' is unavailable"),
    ("a reference counted by hand", "workspace.mm",
     "if (url == nil) return std::nullopt;", "[url retain];",
     "compiler", "ARC forbids explicit message send of 'retain'"),
    ("a cast that does not say who owns", "workspace.mm",
     "(__bridge NSURL*)toCfUrl", "(NSURL*)toCfUrl", "compiler", "requires a bridged cast"),
    ("a function that the system lacks", "file_root.cpp", "  return path;",
     "  extern void nowhere();\n  nowhere();\n  return path;",
     "linker", "undefined symbol: .*nowhere"),
    ("a borrowed reference released", "bundle.cpp", "return retain(mainBundle)",
     "return adopt(mainBundle)", "analyser", "Incorrect decrement of the reference count"),
    ("a created object that nobody releases", "bundle.cpp",
     "adopt(CFBundleCopyExecutableURL(", "retain(CFBundleCopyExecutableURL(",
     "analyser", "Potential leak of an object"),
    ("what may be nil where none may be", "workspace.mm",
     "if (url == nil) return std::nullopt;", "[NSWorkspace.sharedWorkspace openURL:url];",
     "analyser", "Nullable pointer is passed to a callee that requires a non-null"),
]

# What, the part of the application, what is done to it, by which words it is seen, and whether without the list, too.
DAMAGES = [
    ("a plug-in is gone", "PlugIns/platforms/libqcocoa.dylib", pathlib.Path.unlink, "libqcocoa.* is nothing", False),
    ("a script is empty", "Resources/install.sh", lambda path: path.write_text(""), "install.sh is .*, not", False),
    ("nobody may start a program", "MacOS/orvane-install", lambda path: path.chmod(0o644),
     "orvane-install is file 644 .*, not file 755", False),
    ("there is a file more", "Frameworks/QtGui.framework/more", pathlib.Path.touch, "more is .*, not nothing", False),
    ("a framework is gone", "Frameworks/QtGui.framework", shutil.rmtree,
     "loads .*QtGui, which is neither the system's nor inside", True),
    ("the application may show no window", "Info.plist",
     lambda path: edit(path, b"<dict>", b"<dict><key>LSBackgroundOnly</key><true/>"), "LSBackgroundOnly", True),
    ("a program was changed after it was signed", "MacOS/orvane-install", lambda path: edit(path, b"--purge", b"--merge"),
     "orvane-install .*was changed in", True),
]


def edit(path, old, new):
    path.write_bytes(path.read_bytes().replace(old, new))


def run(command, folder=None):
    done = subprocess.run(command, capture_output=True, text=True, cwd=folder)
    return done.returncode, done.stdout + done.stderr


def compile_copy(build, source, copy, *options):
    """Compiles a copy of a source as the build compiles that, into a file beside the copy."""
    entries = json.loads((build / "compile_commands.json").read_text())
    words = shlex.split(next(entry["command"] for entry in entries if entry["file"] == str(source)))
    for option in ("-o", "-c"):
        del words[words.index(option) : words.index(option) + 2]
    return run([*words, *options, "-c", copy, "-o", f"{copy}.o"], build)


def link(build, with_object):
    """Links orvane-install as the build does, with this object before its archives."""
    _, commands = run(["ninja", "-t", "commands", "-s", "Orvane Installer.app/Contents/MacOS/orvane-install"], build)
    words = shlex.split(commands.strip().splitlines()[-1].removeprefix(": && ").removesuffix(" && :"))
    at = words.index("-o")
    words[at : at + 2] = [with_object, "-o", f"{with_object}.linked"]
    return run(words, build)


def analyse(build, source):
    """What the analyser says of a source if it finds something."""
    copy = shutil.copy(source, build / "checked")
    status, output = compile_copy(build, source, copy, *ANALYSER)
    return output if status else None


def not_seen(what, status, output, words):
    """What is wrong if this has not failed, and with these words."""
    found = next((line for line in output.splitlines() if re.search(words, line)), None)
    if status == 0 or found is None:
        return f"not seen: {what}\n{output}"
    print(f"seen: {what}\n    {found.strip()}")
    return None


def try_mistake(build, mistake):
    what, name, right, wrong, who, words = mistake
    source = pathlib.Path("platform/macos", name).resolve()
    text = source.read_text()
    if right not in text:
        return f"{name} has no place for: {what}"
    copy = build / f"checked/{MISTAKES.index(mistake)}-{name}"
    copy.write_text(text.replace(right, wrong))
    status, output = compile_copy(build, source, copy, *(ANALYSER if who == "analyser" else []))
    if who == "linker" and status == 0:
        status, output = link(build, f"{copy}.o")
    return not_seen(f"{what}, by the {who}", status, output, words)


def try_damage(build, damage):
    what, part, do, words, structure = damage
    builds = build.parent
    with tempfile.TemporaryDirectory(dir=builds) as folder:
        copy = pathlib.Path(folder, "Orvane Installer.app")
        shutil.copytree(builds / copy.name, copy, symlinks=True)
        do(copy / "Contents" / part)
        verify = pathlib.Path(__file__).with_name("verify.py")
        status, output = run([sys.executable, verify, copy, *([] if structure else [builds / "list.json"])])
    return not_seen(what, status, output, words)


def main():
    os.environ["LC_ALL"] = "C.UTF-8"
    action, build = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    (build / "checked").mkdir(exist_ok=True)
    sources = [str(path.resolve()) for folder in ("common", "macos", "posix")
               for path in pathlib.Path("platform", folder).iterdir() if path.suffix in (".cpp", ".mm")]
    tasks = {"analyse": [(analyse, sources, "files analysed, nothing found")],
             "prove": [(try_mistake, MISTAKES, "kinds of mistakes, all caught"),
                       (try_damage, DAMAGES, "kinds of damage, all seen")]}
    for task, items, what in tasks[action]:
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            problems = [problem for problem in pool.map(functools.partial(task, build), items) if problem]
        if problems:
            sys.exit("\n".join(problems))
        print(f"{len(items)} {what}")


main()
