"""Mach-O files of an application, and the text stubs of the system's libraries."""

import functools
import os
import pathlib
import re

import lief

ARCHITECTURES = {lief.MachO.Header.CPU_TYPE.ARM64: "arm64", lief.MachO.Header.CPU_TYPE.X86_64: "x86_64"}
MAGIC = {b"\xca\xfe\xba\xbe", b"\xcf\xfa\xed\xfe", b"\xce\xfa\xed\xfe", b"\xfe\xed\xfa\xcf"}
SDK = pathlib.Path(__file__).parent.parent / "macos-sdk"
lief.logging.disable()
LOADS = {
    lief.MachO.LoadCommand.TYPE.LOAD_DYLIB,
    lief.MachO.LoadCommand.TYPE.LOAD_WEAK_DYLIB,
    lief.MachO.LoadCommand.TYPE.REEXPORT_DYLIB,
    lief.MachO.LoadCommand.TYPE.LOAD_UPWARD_DYLIB,
}


def is_macho(path):
    if path.is_symlink() or not path.is_file():
        return False
    with open(path, "rb") as file:
        return file.read(4) in MAGIC


@functools.cache
def parsed(path):
    return lief.MachO.parse(str(path))


def slices(path):
    """The parts of a file by architecture. They live as long as the whole, which is kept."""
    return {ARCHITECTURES.get(part.header.cpu_type, "?"): part for part in parsed(path) or ()}


def loaded_libraries(part):
    """Install names in the order of their ordinals."""
    return [library.name for library in part.libraries if library.command in LOADS]


def rpaths(part):
    return [command.path for command in part.rpaths]


def resolve(name, part, path, program):
    """The file that the loader takes for this install name, or None. A path of the
    program's own counts too: it is in the chain of everything that the program loads."""
    if not name.startswith("@"):
        return None
    chain = [(rpath, path) for rpath in rpaths(part)]
    main = next(iter(slices(program).values()))
    chain += [(rpath, program) for rpath in rpaths(main)]
    candidates = [(name, path)]
    if name.startswith("@rpath/"):
        candidates = [(rpath + "/" + name[len("@rpath/"):], holder) for rpath, holder in chain]
    for candidate, holder in candidates:
        place = expand(candidate, holder, program)
        if os.path.isfile(place):
            return pathlib.Path(os.path.realpath(place))
    return None


def expand(text, holder, program):
    text = text.replace("@loader_path", str(holder.parent))
    return os.path.normpath(text.replace("@executable_path", str(program.parent)))


class Stubs:
    """What the system's libraries export, by install name and architecture."""

    def __init__(self, more):
        self.made_here = bool(more)
        self.symbols = {}
        for path in [*SDK.glob("**/*.tbd"), *map(pathlib.Path, more)]:
            self.read(path.read_text())
        listed = (SDK / "system-libraries.txt").read_text().splitlines()
        self.known = {line for line in listed if line.startswith("/")} | set(self.symbols)

    def has(self, name):
        """Whether it is a library of the system. On a Mac the linker has looked for it."""
        return name in self.known or not self.made_here and name.startswith(("/System/Library/", "/usr/lib/"))

    def read(self, text):
        name = re.search(r"^install-name:\s*'?([^'\s]+)", text, re.M)[1]
        exported = self.symbols.setdefault(name, {"arm64": set(), "x86_64": set()})
        for stanza in re.split(r"^\s*- targets:", text, flags=re.M)[1:]:
            targets, _, lists = stanza.partition("]")
            for architecture, of in exported.items():
                # Parts of the system serve both with the code for arm64e.
                if re.search(rf"\b{architecture}e?-macos\b", targets):
                    of |= exported_names(lists)


def exported_names(lists):
    names = set()
    for kind, listed in re.findall(r"([\w-]+):\s*\[([^\]]*)\]", lists):
        for name in re.findall(r"[^\s,']+", listed):
            if kind in ("symbols", "weak-symbols", "thread-local-symbols"):
                names.add(name)
            elif kind == "objc-classes":
                names |= {f"_OBJC_CLASS_$_{name}", f"_OBJC_METACLASS_$_{name}"}
    return names


@functools.cache
def exports(path, architecture):
    part = slices(path).get(architecture)
    return {symbol.name for symbol in part.exported_symbols} if part else set()
