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
FRAMEWORKS = pathlib.Path("tools/macos-sdk/Frameworks")

# What, the file, what stands there, the mistake, and by which words it is seen.
MISTAKES = [
    ("a misspelt method", "workspace.mm", " openURL:", " openUrl:", "no visible @interface .* the selector 'openUrl:'"),
    ("a misspelt action", "standard_menu.mm", "@selector(hide:)", "@selector(hides:)", "undeclared selector 'hides:'"),
    ("an argument of a wrong type", "preferences.cpp", "CFPreferencesSynchronize(toCfString(application)",
     "CFPreferencesSynchronize(toCfUrl(application, false)", "no matching function .* 'CFPreferencesSynchronize'"),
    ("a method of macOS 14", "application.mm", "activateIgnoringOtherApps:YES", "activate", "available on macOS 14.0"),
    ("a library call newer than macOS 11", "file_root.cpp", "namespace platform {",
     "#include <charconv>\nnamespace platform {\nauto text(char* to) { return std::to_chars(to, to + 9, 0.5); }",
     "'to_chars' is unavailable"),
    ("a cast that names no owner", "workspace.mm", "(__bridge NSURL*)toCfUrl", "(NSURL*)toCfUrl", "bridged cast"),
    ("a borrowed reference released", "bundle.cpp", "return retain(mainBundle)", "return adopt(mainBundle)",
     "Incorrect decrement of the reference count"),
    ("a created object that nobody releases", "bundle.cpp", "adopt(CFBundleCopyExecutableURL(",
     "retain(CFBundleCopyExecutableURL(", "Potential leak of an object"),
    ("what may be nil where none may be", "workspace.mm", "if (url == nil) return std::nullopt;",
     "[NSWorkspace.sharedWorkspace openURL:url];", "Nullable pointer is passed to a callee that requires a non-null"),
    ("a reference that a cast gives away", "workspace.mm", "(__bridge NSURL*)parse", "(__bridge_transfer NSURL*)parse",
     "a cast gives away"),
    ("a call exchanged for its neighbour", "text_input_sources.cpp", "TISEnableInputSource(", "TISDisableInputSource(",
     "_TISEnableInputSource is declared and not used"),
    ("an observer that stays", "enabled_sources_observer.mm",
     "[NSDistributedNotificationCenter.defaultCenter removeObserver:token_];", "",
     "removeObserver: is declared and not used"),
]

# What, the part of the application, what is done to it, by which words it is seen, and whether without the list, too.
DAMAGES = [
    ("a plug-in is gone", "PlugIns/platforms/libqcocoa.dylib", pathlib.Path.unlink, "libqcocoa.* is missing", True),
    ("a script is empty", "Resources/install.sh", lambda path: path.write_text(""), "install.sh is .* empty", True),
    ("nobody may start a program", "MacOS/orvane-install", lambda path: path.chmod(0o644), "cannot be started", True),
    ("there is a file more", "Frameworks/QtGui.framework/more", pathlib.Path.touch, "more is .*, not nothing", False),
    ("a framework is gone", "Frameworks/QtGui.framework", shutil.rmtree,
     "loads .*QtGui, which is neither the system's nor inside", True),
    ("a link leads nowhere", "Resources/more", lambda path: path.symlink_to("none"), "more leads nowhere", True),
    ("a plug-in is for another Qt", "PlugIns/platforms/libqcocoa.dylib",
     lambda path: edit(path, bytes([2, 4, 6, 0]), bytes([3, 5, 6, 0])), "Qt is there as 6.4.2 and 6.5.3", True),
    ("the application may show no window", "Info.plist",
     lambda path: edit(path, b"<dict>", b"<dict><key>LSBackgroundOnly</key><true/>"), "LSBackgroundOnly", True),
    ("a program was changed after it was signed", "MacOS/orvane-install",
     lambda path: edit(path, b"--purge", b"--merge"), "orvane-install .*was changed in", True),
    ("a seal is not the application's", "_CodeSignature", pathlib.Path.touch, "has no seal that can be read", True),
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


@functools.cache
def declared():
    """Symbols of the stubs and methods of the headers, less one that is not used."""
    stubs, headers = ("".join(path.read_text() for path in FRAMEWORKS.rglob(kind)) for kind in ("*.tbd", "*.h"))
    methods = [re.findall(r"(\w+:)\s*\(", method) or re.findall(r"\)(\w+)", method)[:1]
               for method in re.findall(r"^[-+] \([^;]*;", headers, re.MULTILINE) if "(14.0)" not in method]
    return {*re.findall(r"[\[ ](_\w+)", stubs), *map("".join, methods)}


@functools.cache
def names_in(code):
    return {name.decode() for name in re.findall(rb"[\w$:]+", pathlib.Path(code).read_bytes())}


def faults(build, source, copy, text):
    """What is found in the source if it has this text; empty if nothing is. All that is declared for the code has to
    be used somewhere: what is not any more was exchanged for something else, or forgotten."""
    copy = build / "checked" / copy
    copy.write_text(text)
    for options in (ANALYSER, []):
        status, output = compile_copy(build, source, copy, *options)
        if status:
            return output
    if "__bridge_" in text:
        return f"{source}: a cast gives away a reference, or takes it; ns_string.h does that"
    others = (path for path in build.glob("platform/macos/**/*.o") if path.stem != source.name)
    unused = declared().difference(names_in(f"{copy}.o"), *map(names_in, others))
    return "\n".join(f"{name} is declared and not used" for name in sorted(unused))


def analyse(build, source):
    return faults(build, source, source.name, source.read_text())


def not_seen(what, output, words):
    """What is wrong if these words are not there."""
    found = next((line for line in output.splitlines() if re.search(words, line)), None)
    if found is None:
        return f"not seen: {what}\n{output}"
    print(f"seen: {what}\n    {found.strip()}")
    return None


def try_mistake(build, mistake):
    what, name, right, wrong, words = mistake
    source = pathlib.Path("platform/macos", name).resolve()
    text = source.read_text()
    if right not in text:
        return f"{name} has no place for: {what}"
    return not_seen(what, faults(build, source, f"{MISTAKES.index(mistake)}-{name}", text.replace(right, wrong)), words)


def try_damage(build, damage):
    what, part, do, words, structure = damage
    builds = build.parent
    with tempfile.TemporaryDirectory(dir=builds) as folder:
        copy = pathlib.Path(folder, "Orvane Installer.app")
        shutil.copytree(builds / copy.name, copy, symlinks=True)
        do(copy / "Contents" / part)
        verify = pathlib.Path(__file__).with_name("verify.py")
        _, output = run([sys.executable, verify, copy, *([] if structure else [builds / "list.json"])])
    return not_seen(what, output, words)


def main():
    os.environ["LC_ALL"] = "C.UTF-8"
    action, build = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    (build / "checked").mkdir(exist_ok=True)
    sources = [path.resolve() for folder in ("common", "macos", "posix")
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
