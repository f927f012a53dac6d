"""Signatures of an application: whether the hashes in them are those of what lies there. Who has signed is not looked at."""

import hashlib
import os
import plistlib
import struct

import macho

EMBEDDED, CODE_DIRECTORY = 0xFADE0CC0, 0xFADE0C02
HASHES = {1: hashlib.sha1, 2: hashlib.sha256}
INFORMATION, SEAL = 1, 3  # slots


def code_directories(blob):
    """(offset, fields) of each in an embedded signature."""
    magic, _, count = struct.unpack_from(">III", blob)
    if magic != EMBEDDED:
        raise ValueError("is no embedded signature")
    for index in range(count):
        _, offset = struct.unpack_from(">II", blob, 12 + 8 * index)
        if struct.unpack_from(">I", blob, offset)[0] == CODE_DIRECTORY:
            yield offset, struct.unpack_from(">IIIIIIIIIBBBB", blob, offset)


def misfits(data, part, special):
    """What of a part of a Mach-O file, whose file has these bytes, its signature does not fit. `special` has the bytes
    that are signed with it, by slot."""
    start, signature = part.fat_offset, part.code_signature
    blob = data[start + signature.data_offset:][:signature.data_size]
    found = list(code_directories(blob))
    if not found:
        yield "has no hashes"
    for offset, (_, _, _, _, hashes, _, specials, pages, limit, size, kind, _, page_bits) in found:
        def hash_at(slot):
            return blob[offset + hashes + slot * size:][:size]
        page = 1 << page_bits
        code = data[start:][:limit]
        if limit != signature.data_offset:
            yield "is not signed up to its signature"
        for slot in range(pages):
            if HASHES[kind](code[slot * page:][:page]).digest()[:size] != hash_at(slot):
                yield f"was changed at {slot * page}"
        for slot, content in special.items():
            if slot > specials or HASHES[kind](content).digest()[:size] != hash_at(-slot):
                yield f"was signed with another content of slot {slot}"


def sealed_files(application):
    """What the application's seal says of the files in it; nothing if it is not signed as a whole."""
    seal = application / "Contents/_CodeSignature/CodeResources"
    return plistlib.loads(seal.read_bytes())["files2"] if seal.exists() else {}


def check(application, program, problem):
    contents = application / "Contents"
    sealed = sealed_files(application)
    for name, rules in sealed.items():
        path = contents / name
        if "symlink" in rules:
            fits = path.is_symlink() and os.readlink(path) == rules["symlink"]
        elif "cdhash" in rules:
            fits = path.exists()  # signed itself, and looked at below
        else:
            fits = path.is_file() and hashlib.sha256(path.read_bytes()).digest() == rules["hash2"]
        if not fits:
            problem(f"the signature does not fit {name}")
    for path in (contents / "Resources").rglob("*"):
        if sealed and path.is_file() and str(path.relative_to(contents)) not in sealed:
            problem(f"the signature does not know {path.name}")

    seen = 0
    for path in filter(macho.is_macho, sorted(application.rglob("*"))):
        data = path.read_bytes()
        special = {}
        if sealed and path == program:
            special = {INFORMATION: (contents / "Info.plist").read_bytes(),
                       SEAL: (contents / "_CodeSignature/CodeResources").read_bytes()}
        for architecture, part in macho.slices(path).items():
            if not part.has_code_signature:
                continue  # verify.py says which must have one
            seen += 1
            for text in misfits(data, part, special):
                problem(f"{path.relative_to(contents)} ({architecture}) {text}")
    print(f"signatures: {seen} parts of files, " + (f"{len(sealed)} sealed" if sealed else "not the application as a whole"))
