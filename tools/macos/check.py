#!/usr/bin/env python3
"""Looks at the macOS side of a build for macOS as closely as a Mac's tools would.

usage: check.py analyse BUILD    the static analyser over platform/, with no finding
       check.py prove BUILD      puts one mistake of each kind in, and shows that each is caught
"""

import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

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


class Build:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        entries = json.loads((self.folder / "compile_commands.json").read_text())
        self.commands = {entry["file"]: shlex.split(entry["command"]) for entry in entries}
        self.library = self.library_options(next(iter(self.commands.values())))

    def command(self, source):
        """How the build compiles this file, less the file and its output."""
        words = list(self.commands[str(source)])
        del words[words.index("-o") : words.index("-o") + 2]
        del words[words.index("-c") : words.index("-c") + 2]
        return words

    def library_options(self, command):
        """Headers and settings of the libraries that the cross compiler brings."""
        compiler, target = command[:2], next(word for word in command if word.startswith("--target"))
        shown = subprocess.run([*compiler, target, "-v", "-E", "-x", "c++", "/dev/null"],
                               check=True, capture_output=True, text=True, env=environment()).stderr
        words = next(line for line in shown.splitlines() if " -cc1 " in line).split()
        pairs = list(zip(words, words[1:]))
        folders = [value for key, value in pairs if key == "-isystem"]
        folders = [folder for folder in folders if not folder.endswith("/ziglang/lib/include")]
        own = subprocess.run([ANALYSER, "-print-resource-dir"], check=True, capture_output=True,
                             text=True).stdout.strip() + "/include"
        folders.insert(len(folders) - 1, own)
        settings = [f"-D{value}" for key, value in pairs if key == "-D" and value.startswith("_LIBC")]
        return ["-nostdinc", *settings, *(f"-isystem{folder}" for folder in folders)]

    def analysed(self, source, of):
        words = [word for word in self.command(of)[2:] if not word.startswith("--target")]
        return [ANALYSER, "--target=arm64-apple-macos11.5", "--analyze", "-Xclang",
                "-analyzer-werror", "-Xclang", "-analyzer-output=text", "-Xclang",
                f"-analyzer-checker={CHECKERS}", "-Xclang",
                f"-analyzer-disable-checker={NOT_CHECKED}", *self.library, *words, str(source)]

    def linked(self, program, with_object):
        """The build's command for a program, with this object before its archives."""
        commands = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", "-s",
                                   f"Orvane Installer.app/Contents/MacOS/{program}"],
                                  check=True, capture_output=True, text=True).stdout
        words = shlex.split(commands.strip().removeprefix(": && ").removesuffix(" && :"))
        at = words.index("-o")
        words[at : at + 2] = [str(with_object), "-o", f"{with_object}.linked"]
        return words


def environment():
    return {**os.environ, "LC_ALL": "C.UTF-8"}


def run(command, folder=None):
    done = subprocess.run(command, capture_output=True, text=True, cwd=folder, env=environment())
    return done.returncode, done.stdout + done.stderr


def in_parallel(action, items):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return all(list(pool.map(action, items)))


def analyse(build):
    sources = [file for file in build.commands if "/platform/" in file and "/tests/" not in file]

    def one(source):
        status, output = run(build.analysed(source, source))
        if status != 0:
            print(output)
        return status == 0

    good = in_parallel(one, sources)
    print(f"analyser: {len(sources)} files" + (", nothing found" if good else ""))
    return good


def try_mistake(build, number, mistake):
    what, name, right, wrong, who, words = mistake
    source = pathlib.Path("platform/macos", name).resolve()
    text = source.read_text()
    if right not in text:
        return f"{name} has no place for: {what}", ""
    copy = build.folder / f"prove/{number}-{name}"
    copy.parent.mkdir(exist_ok=True)
    changed = text.replace(right, wrong)
    if "NSNowhere" in wrong:  # declared; now it is used
        changed = changed.replace("  assertMainThread();", "  assertMainThread();\n  [NSNowhere new];")
    copy.write_text(changed)
    compiled = [*build.command(source), "-c", str(copy), "-o", f"{copy}.o"]
    if who == "analyser":
        status, output = run(build.analysed(copy, source), build.folder)
    else:
        status, output = run(compiled, build.folder)
        if who.startswith("linker"):
            if status != 0:
                return f"does not compile: {what}", output
            program = who.removeprefix("linker of ")
            status, output = run(build.linked(program, f"{copy}.o"), build.folder)
    if status == 0:
        return f"not caught: {what}", ""
    found = next((line for line in output.splitlines() if re.search(words, line)), None)
    if found is None:
        return f"failed for another reason: {what}", output
    print(f"caught by the {who}: {what}\n    {found[-150:].strip()}")
    return None, ""


def prove(build):
    def one(numbered):
        problem, output = try_mistake(build, *numbered)
        if problem:
            print(f"{output}\ncheck: {problem}", file=sys.stderr)
        return problem is None

    good = in_parallel(one, enumerate(MISTAKES, 1))
    print(f"{len(MISTAKES)} kinds of mistakes" + (", all caught" if good else ""))
    return good


def main():
    actions = {"analyse": analyse, "prove": prove}
    if len(sys.argv) != 3 or sys.argv[1] not in actions:
        sys.exit(__doc__)
    sys.exit(0 if actions[sys.argv[1]](Build(sys.argv[2])) else 1)


main()
