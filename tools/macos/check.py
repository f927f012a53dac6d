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

ANALYSER = "clang++-19"
CHECKERS = "core,cplusplus,nullability,osx,security,unix"
# The toolkit's objects are owned by their parents, which the analyser does not know.
NOT_CHECKED = "cplusplus.NewDeleteLeaks,security.insecureAPI.DeprecatedOrUnsafeBufferHandling"

# What, the file, what stands there, the mistake, who catches it, and by which words.
MISTAKES = [
    ("a misspelt function", "text_input_sources.cpp",
     "TISEnableInputSource(", "TISEnableInputSourse(",
     "compiler", "undeclared identifier 'TISEnableInputSourse'"),
    ("a misspelt method", "workspace.mm", " openURL:", " openUrl:",
     "compiler", "no visible @interface .* declares the selector 'openUrl:'"),
    ("a misspelt action", "standard_menu.mm", "@selector(hide:)", "@selector(hides:)",
     "compiler", "undeclared selector 'hides:'"),
    ("an argument of a wrong type, C", "preferences.cpp",
     "CFPreferencesSynchronize(toCfString(application)",
     "CFPreferencesSynchronize(toCfUrl(application, false)",
     "compiler", "no matching function for call to 'CFPreferencesSynchronize'"),
    ("an argument of a wrong type, Objective-C", "admin_script.mm",
     "initWithSource:toNSString(source)", "initWithSource:(NSURL*)[NSURL alloc]",
     "compiler", r"cannot initialize a parameter of type 'NSString \*.*' with .* 'NSURL \*'"),
    ("a number for an enumeration", "property_list.cpp",
     "kCFPropertyListImmutable, nullptr, nullptr",
     "kCFPropertyListImmutable, [](CFPropertyListFormat f) { return &f; }(100), nullptr",
     "compiler", "no matching function|cannot .* 'CFPropertyListFormat'"),
    ("nil where none may be", "admin_script.mm",
     "initWithSource:toNSString(source)", "initWithSource:nil",
     "compiler", "null passed to a callee that requires a non-null argument"),
    ("a method of macOS 12", "workspace.mm",
     " openURL:(__bridge NSURL*)parse(url.text).get()]",
     " openURL:(__bridge NSURL*)parse(url.text).get()] + "
     "([NSWorkspace.sharedWorkspace URLsForApplicationsWithBundleIdentifier:@\"\"], 0)",
     "compiler", "only available on macOS 12.0 or newer"),
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
    ("a misspelt call of the toolkit", "host_window.mm", "window_.isExposed()",
     "window_.isExposd()", "compiler", "no member named 'isExposd' in 'QWindow'"),
    ("a function that the system lacks", "file_root.cpp", "  return path;",
     "  extern void nowhere();\n  nowhere();\n  return path;",
     "linker of orvane-install", "undefined symbol: .*nowhere"),
    ("a class that the system lacks, in the window", "host_window.mm", "namespace platform {",
     "@interface NSNowhere : NSObject\n@end\nnamespace platform {",
     "linker of Orvane Installer", "undefined symbol: _OBJC_CLASS_\\$_NSNowhere"),
    ("a borrowed reference released", "bundle.cpp", "return retain(mainBundle)",
     "return adopt(mainBundle)", "analyser", "Incorrect decrement of the reference count"),
    ("an element of an array released", "text_input_sources.cpp",
     "share(retain(", "share(adopt(", "analyser", "Incorrect decrement of the reference count"),
    ("a created object retained once more", "bundle.cpp",
     "adopt(CFBundleCopyExecutableURL(", "retain(CFBundleCopyExecutableURL(",
     "analyser", "Potential leak of an object"),
    ("a created object that nobody releases", "workspace.mm",
     "LSRegisterURL(toCfUrl(bundle, true).get()",
     "LSRegisterURL(CFURLCreateWithString(nullptr, toCfString(\"x\").get(), nullptr)",
     "analyser", "Potential leak of an object"),
    ("what may be nil where none may be", "workspace.mm",
     "if (url == nil) return std::nullopt;", "[NSWorkspace.sharedWorkspace openURL:url];",
     "analyser", "Nullable pointer is passed to a callee that requires a non-null"),
]



# What, the part of the application, what is done to it, by which words it is seen, and whether without the list, too.
DAMAGES = [
    ("a plug-in is gone", "PlugIns/platforms/libqcocoa.dylib", lambda path: path.unlink(), "there is no .*libqcocoa", False),
    ("a script is empty", "Resources/install.sh", lambda path: path.write_text(""), "install.sh has another content", False),
    ("nobody may start a program", "MacOS/orvane-install", lambda path: path.chmod(0o644),
     "orvane-install is a file 644, not a file 755", False),
    ("there is a file more", "Frameworks/QtGui.framework/more", lambda path: path.touch(), "more does not belong there", False),
    ("a framework is gone", "Frameworks/QtGui.framework", shutil.rmtree,
     "loads .*QtGui, which is neither the system's nor inside", True),
    ("the application may show no window", "Info.plist",
     lambda path: edit(path, b"<dict>", b"<dict><key>LSBackgroundOnly</key><true/>"), "LSBackgroundOnly", True),
    ("a program was changed after it was signed", "MacOS/orvane-install", lambda path: edit(path, b"--purge", b"--merge"),
     "orvane-install .*was changed at", True),
]


def edit(path, old, new):
    path.write_bytes(path.read_bytes().replace(old, new))


def run(command, folder=None):
    done = subprocess.run(command, capture_output=True, text=True, cwd=folder)
    return done.returncode, done.stdout + done.stderr


def compiler(build, source):
    """How the build compiles this file, less the file and its output."""
    entries = json.loads((build / "compile_commands.json").read_text())
    words = shlex.split(next(entry["command"] for entry in entries if entry["file"] == str(source)))
    for option in ("-o", "-c"):
        del words[words.index(option) : words.index(option) + 2]
    return words


@functools.cache
def library_options(*compiler_and_target):
    """Headers and settings of the libraries that the cross compiler brings."""
    _, shown = run([*compiler_and_target, "-v", "-E", "-x", "c++", "/dev/null"])
    words = next(line for line in shown.splitlines() if " -cc1 " in line).split()
    pairs = list(zip(words, words[1:]))
    folders = [value for key, value in pairs if key == "-isystem" and not value.endswith("/ziglang/lib/include")]
    _, own = run([ANALYSER, "-print-resource-dir"])
    folders.insert(len(folders) - 1, own.strip() + "/include")
    settings = [f"-D{value}" for key, value in pairs if key == "-D" and value.startswith("_LIBC")]
    return ["-nostdinc", *settings, *(f"-isystem{folder}" for folder in folders)]


def analyser(build, source, copy=None):
    words = compiler(build, source)
    target = next(word for word in words if word.startswith("--target"))
    return [ANALYSER, "--target=arm64-apple-macos11.5", "--analyze",
            *(word for option in ("-analyzer-werror", "-analyzer-output=text", f"-analyzer-checker={CHECKERS}",
                                  f"-analyzer-disable-checker={NOT_CHECKED}") for word in ("-Xclang", option)),
            *library_options(*words[:2], target), *(word for word in words[2:] if word != target), str(copy or source)]


def linker(build, program, with_object):
    """The build's command for a program, with this object before its archives."""
    _, commands = run(["ninja", "-C", build, "-t", "commands", "-s", f"Orvane Installer.app/Contents/MacOS/{program}"])
    words = shlex.split(commands.strip().splitlines()[-1].removeprefix(": && ").removesuffix(" && :"))
    at = words.index("-o")
    words[at : at + 2] = [str(with_object), "-o", f"{with_object}.linked"]
    return words


def analyse(build, source):
    status, output = run(analyser(build, source))
    return output if status else None


def try_mistake(build, mistake):
    """What is wrong if the mistake is not caught as it should be."""
    what, name, right, wrong, who, words = mistake
    source = pathlib.Path("platform/macos", name).resolve()
    text = source.read_text()
    if right not in text:
        return f"{name} has no place for: {what}"
    copy = build / f"prove/{MISTAKES.index(mistake)}-{name}"
    copy.parent.mkdir(exist_ok=True)
    changed = text.replace(right, wrong)
    if "NSNowhere" in wrong:  # declared; now it is used
        changed = changed.replace("  assertMainThread();", "  assertMainThread();\n  [NSNowhere new];")
    copy.write_text(changed)
    if who == "analyser":
        status, output = run(analyser(build, source, copy), build)
    else:
        status, output = run([*compiler(build, source), "-c", str(copy), "-o", f"{copy}.o"], build)
    if who.startswith("linker"):
        if status != 0:
            return f"does not compile: {what}\n{output}"
        status, output = run(linker(build, who.removeprefix("linker of "), f"{copy}.o"), build)
    if status == 0:
        return f"not caught: {what}"
    found = next((line for line in output.splitlines() if re.search(words, line)), None)
    if found is None:
        return f"failed for another reason: {what}\n{output}"
    print(f"caught by the {who}: {what}\n    {found[-150:].strip()}")
    return None


def try_damage(build, damage):
    """What is wrong if the damage to a copy of the application is not seen as it should be."""
    what, part, do, words, structure = damage
    builds = build.parent
    with tempfile.TemporaryDirectory(dir=builds) as folder:
        copy = pathlib.Path(folder, "Orvane Installer.app")
        shutil.copytree(builds / copy.name, copy, symlinks=True)
        do(copy / "Contents" / part)
        status, output = run([sys.executable, pathlib.Path(__file__).with_name("verify.py"), copy,
                              *([] if structure else [builds / "list.json"])])
    found = next((line for line in output.splitlines() if re.search(words, line)), None)
    if status == 0 or found is None:
        return f"not seen: {what}\n{output}"
    print(f"seen: {what}\n    {found}")
    return None


def main():
    os.environ["LC_ALL"] = "C.UTF-8"
    action, build = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
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
