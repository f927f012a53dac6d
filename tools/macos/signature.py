"""Signatures of an application: whether the hashes in them are those of what lies there. Who has signed is not looked at."""

import hashlib
import os
import plistlib
import struct

import macho

EMBEDDED, CODE_DIRECTORY = 0xFADE0CC0, 0xFADE0C02
HASHES = {1: hashlib.sha1, 2: hashlib.sha256}
INFORMATION, SEAL = 1, 3  # slots


def code_directories(data, part):
    """(bytes, fields) of each in the signature of this part of a file, whose bytes these are."""
    blob = data[part.fat_offset + part.code_signature.data_offset:][:part.code_signature.data_size]
    magic, _, count = struct.unpack_from(">III", blob)
    for index in range(count if magic == EMBEDDED else 0):
        _, offset = struct.unpack_from(">II", blob, 12 + 8 * index)
        if struct.unpack_from(">I", blob, offset)[0] == CODE_DIRECTORY:
            fields = struct.unpack_from(">IIIIIIIIIBBBB", blob, offset)
            yield blob[offset:][:fields[1]], fields


def misfits(data, part, special):
    """What of this part its signature does not fit. `special` has the bytes that are signed with it, by slot."""
    found = list(code_directories(data, part))
    if not found:
        yield "has no hashes"
    for directory, (_, _, _, _, hashes, _, specials, pages, limit, size, kind, _, page_bits) in found:
        def hash_at(slot):
            return directory[hashes + slot * size:][:size]
        page = 1 << page_bits
        code = data[part.fat_offset:][:limit]
        if limit != part.code_signature.data_offset:
            yield "is not signed up to its signature"
        for slot in range(pages):
            if HASHES[kind](code[slot * page:][:page]).digest()[:size] != hash_at(slot):
                yield f"was changed at {slot * page}"
        for slot, content in special.items():
            if slot > specials or HASHES[kind](content).digest()[:size] != hash_at(-slot):
                yield f"was signed with another content of slot {slot}"


def identities(path):
    """How a seal names signed code: by the hashes of its hashes."""
    if path.is_dir():
        path = path / path.stem
    data = path.read_bytes()
    return {HASHES[fields[10]](directory).digest()[:20] for part in macho.slices(path.resolve()).values()
            if part.has_code_signature for directory, fields in code_directories(data, part)}


def unsealed(root, seal):
    """What a seal does not fit of the files beside it."""
    sealed = plistlib.loads(seal.read_bytes())["files2"]
    for name, rules in sealed.items():
        path = root / name
        if "symlink" in rules:
            fits = path.is_symlink() and os.readlink(path) == rules["symlink"]
        elif "cdhash" in rules:
            fits = path.exists() and rules["cdhash"] in identities(path)
        else:
            fits = path.is_file() and hashlib.sha256(path.read_bytes()).digest() == rules["hash2"]
        if not fits:
            yield f"does not fit {name}"
    for path in (root / "Resources").rglob("*"):
        name = str(path.relative_to(root))
        if (path.is_symlink() or path.is_file()) and name not in sealed and name != "Resources/Info.plist":
            yield f"does not know {name}"


def check(application, program, problem):
    seals = {program: (application / "Contents", "Info.plist")}
    for framework in application.glob("Contents/Frameworks/*.framework"):
        seals[framework / "Versions/A" / framework.stem] = (framework / "Versions/A", "Resources/Info.plist")
    is_signed = (application / "Contents/_CodeSignature").exists()

    seen = 0
    for path in filter(macho.is_macho, sorted(application.rglob("*"))):
        data = path.read_bytes()
        where = path.relative_to(application)
        special = {}
        if is_signed and path in seals:
            root, information = seals[path]
            seal = root / "_CodeSignature/CodeResources"
            for text in unsealed(root, seal) if seal.exists() else ["is not there"]:
                problem(f"the seal of {where} {text}")
            if seal.exists():
                special = {INFORMATION: (root / information).read_bytes(), SEAL: seal.read_bytes()}
        for architecture, part in macho.slices(path).items():
            if part.has_code_signature:
                seen += 1
                for text in misfits(data, part, special):
                    problem(f"{where} ({architecture}) {text}")
            elif is_signed or architecture == "arm64":
                problem(f"{where} ({architecture}) is not signed")
    print(f"signatures: {seen} parts of files, " + (f"{len(seals)} seals" if is_signed else "the application as a whole has none"))
