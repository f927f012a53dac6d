"""Mach-O files of an application."""

import functools
import hashlib
import os

import lief

ARCHITECTURES = {lief.MachO.Header.CPU_TYPE.ARM64: "arm64", lief.MachO.Header.CPU_TYPE.X86_64: "x86_64"}
lief.logging.disable()


def is_macho(path):
    return path.is_file() and not path.is_symlink() and lief.is_macho(str(path))


@functools.cache
def parsed(path):
    return lief.MachO.parse(str(path))


def slices(path):
    """The parts of a file by architecture. They live as long as the whole, which is kept."""
    return {ARCHITECTURES.get(part.header.cpu_type, "?"): part for part in parsed(path) or ()}


def hash_of(path):
    """What a file holds. Of code what stays when it is signed: all but the signature and the commands that say where
    that is."""
    data, found = path.read_bytes(), hashlib.sha256()
    if not is_macho(path):
        found.update(data)
    for part in slices(path).values():
        for command in part.commands:
            if not isinstance(command, lief.MachO.CodeSignature) and getattr(command, "name", "") != "__LINKEDIT":
                found.update(command.data)
        start = min(section.offset for section in part.sections if section.offset)
        end = part.code_signature.data_offset if part.has_code_signature else part.original_size
        found.update(data[part.fat_offset:][start:end].rstrip(b"\0"))
    return found.hexdigest()


def loaded_libraries(part):
    """Install names, less that of the library itself."""
    own = lief.MachO.LoadCommand.TYPE.ID_DYLIB
    return [library.name for library in part.libraries if library.command != own]


def rpaths(part):
    return [command.path for command in part.rpaths]


def lies_inside(name, part, path, program):
    """Whether the loader takes a file of the application for this install name. A path of
    the program's own counts too: it is in the chain of everything that the program loads."""
    places = [expand(name, path, program)]
    if name.startswith("@rpath/"):
        main = next(iter(slices(program).values()))
        chain = [(rpath, path) for rpath in rpaths(part)] + [(rpath, program) for rpath in rpaths(main)]
        places = [expand(rpath + name.removeprefix("@rpath"), holder, program) for rpath, holder in chain]
    return name.startswith("@") and any(map(os.path.isfile, places))


def expand(text, holder, program):
    text = text.replace("@loader_path", str(holder.parent))
    return os.path.normpath(text.replace("@executable_path", str(program.parent)))
