"""Signatures of an application: whether the hashes in them are those of what lies there. Who has signed is not looked at."""

import hashlib
import plistlib
import struct
import xml.parsers.expat

import macho

EMBEDDED, CODE_DIRECTORY = 0xFADE0CC0, 0xFADE0C02
INFORMATION, SEAL = -1, -3  # slots of a list of hashes; from 0 on come the pages of the code


def hash_of(data):
    return hashlib.sha256(data).digest()


def code_directories(part):
    """The lists of hashes in the signature of this part of a file."""
    blob = bytes(part.code_signature.content)
    magic, _, count = struct.unpack_from(">III", blob)
    for index in range(count if magic == EMBEDDED else 0):
        _, offset = struct.unpack_from(">II", blob, 12 + 8 * index)
        kind, size = struct.unpack_from(">II", blob, offset)
        if kind == CODE_DIRECTORY:
            yield blob[offset:][:size]


def misfits(data, part, special):
    """What of this part its signature does not fit. `special` has by slot what is signed with the code."""
    directories = list(code_directories(part))
    if not directories:
        yield "has no hashes"
    for directory in directories:
        hashes, specials, pages, limit, size, page_bits = struct.unpack_from(">16xI4xIIIB2xB", directory)
        if limit != part.code_signature.data_offset:
            yield "is not signed up to its signature"
        code = data[part.fat_offset:][:limit]
        page = 1 << page_bits
        signed = special | {slot: code[slot * page:][:page] for slot in range(pages)}
        for slot, content in signed.items():
            if slot < -specials or hash_of(content) != directory[hashes + slot * size:][:size]:
                yield f"was changed in slot {slot}"


def unsealed(root, seal):
    """Which of the files beside it a seal does not fit. Code has a signature of its own."""
    for name, rules in plistlib.loads(seal.read_bytes())["files2"].items():
        if "hash2" in rules and not ((root / name).is_file() and hash_of((root / name).read_bytes()) == rules["hash2"]):
            yield name


def check(application, program, problem):
    is_signed = (application / "Contents/_CodeSignature").exists()
    sealed = {program: application / "Contents"} if is_signed else {}
    sealed |= {path: path.parent for path in application.glob("Contents/Frameworks/*/Versions/A/Qt*") if is_signed}
    for path in filter(macho.is_macho, sorted(application.rglob("*"))):
        data = path.read_bytes()
        where = path.relative_to(application)
        special = {}
        if root := sealed.get(path):
            information = root / ("Info.plist" if path == program else "Resources/Info.plist")
            seal = root / "_CodeSignature/CodeResources"
            try:
                special = {INFORMATION: information.read_bytes(), SEAL: seal.read_bytes()}
                for name in unsealed(root, seal):
                    problem(f"the seal of {where} does not fit {name}")
            except (OSError, ValueError, KeyError, xml.parsers.expat.ExpatError) as error:
                problem(f"{where} has no seal that can be read: {error}")
        for architecture, part in macho.slices(path).items():
            if part.has_code_signature:
                for text in misfits(data, part, special):
                    problem(f"{where} ({architecture}) {text}")
            elif is_signed or architecture == "arm64":
                problem(f"{where} ({architecture}) is not signed")
