"""Signs bundles ad hoc where Apple's codesign is not to be had.

Each Mach-O file gets a code directory that holds the hash of every page, of the information dictionary and of the
resource seal. The seal, `_CodeSignature/CodeResources`, lists the hash of every other file of the bundle; what is
signed by itself inside (a framework, its helpers) is listed by its own code hash. So nested code is signed first.
"""
import hashlib
import os
import plistlib
import struct
from pathlib import Path
from xml.parsers.expat import ExpatError

from macos import macho

EMBEDDED_SIGNATURE = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
REQUIREMENTS = 0xFADE0C01
SIGNATURE_WRAPPER = 0xFADE0B01
SLOT_CODE_DIRECTORY, SLOT_REQUIREMENTS, SLOT_SIGNATURE = 0, 2, 0x10000

VERSION = 0x20400  # with the range of the executable segment
FLAG_ADHOC = 0x2
MAIN_BINARY = 0x1
SHA256 = 2
PAGE_BITS = 12
HEADER_SIZE = 88

# What codesign itself writes for a bundle with a Resources folder: which files the seal covers, and how.
RULES = {
    "^Resources/": True,
    "^Resources/.*\\.lproj/": {"optional": True, "weight": 1000.0},
    "^Resources/.*\\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    "^Resources/Base\\.lproj/": {"weight": 1010.0},
    "^version.plist$": True,
}
RULES2 = {
    ".*\\.dSYM($|/)": {"weight": 11.0},
    "^(.*/)?\\.DS_Store$": {"omit": True, "weight": 2000.0},
    "^(Frameworks|SharedFrameworks|PlugIns|Plug-ins|XPCServices|Helpers|MacOS|Library/(Automator|Spotlight|LoginItems))/":
        {"nested": True, "weight": 10.0},
    "^.*": True,
    "^Info\\.plist$": {"omit": True, "weight": 20.0},
    "^PkgInfo$": {"omit": True, "weight": 20.0},
    "^Resources/": {"weight": 20.0},
    "^Resources/.*\\.lproj/": {"optional": True, "weight": 1000.0},
    "^Resources/.*\\.lproj/locversion.plist$": {"omit": True, "weight": 1100.0},
    "^Resources/Base\\.lproj/": {"weight": 1010.0},
    "^[^/]+$": {"nested": True, "weight": 10.0},
    "^embedded\\.provisionprofile$": {"weight": 20.0},
    "^version\\.plist$": {"weight": 20.0},
}
NESTED_FOLDERS = ("Frameworks/", "SharedFrameworks/", "PlugIns/", "Plug-ins/", "XPCServices/", "Helpers/", "MacOS/",
                  "Library/Automator/", "Library/Spotlight/", "Library/LoginItems/")
PLAIN_FILES = ("Info.plist", "PkgInfo", "version.plist", "embedded.provisionprofile", ".DS_Store")


class SigningError(Exception):
    """The bundle cannot be signed; the text is for the person who builds."""


class Layout:
    """Where a bundle keeps its parts: an application in Contents, a framework in its current version."""

    def __init__(self, bundle):
        if (bundle / "Contents" / "Info.plist").is_file():
            self.root, self.information = bundle / "Contents", bundle / "Contents" / "Info.plist"
            programs = self.root / "MacOS"
        elif (bundle / "Versions" / "Current").exists():
            self.root = bundle / "Versions" / os.readlink(bundle / "Versions" / "Current")
            self.information, programs = self.root / "Resources" / "Info.plist", self.root
        else:
            raise SigningError(f"{bundle.name} is neither an application nor a framework with versions")
        try:
            self.dictionary = plistlib.loads(self.information.read_bytes())
            self.identifier = self.dictionary["CFBundleIdentifier"]
            self.program = programs / self.dictionary["CFBundleExecutable"]
        except (OSError, KeyError, plistlib.InvalidFileException, ExpatError) as error:
            raise SigningError(f"the information dictionary of {bundle.name} is incomplete: {error}") from None


def is_bundle(path):
    return not path.is_symlink() and ((path / "Contents" / "Info.plist").is_file()
                                      or (path / "Versions" / "Current").exists())


def nested_code(root, program):
    """What is signed by itself inside this root: bundles and programs where the system looks for them."""
    found = []

    def look(folder):
        for path in sorted(folder.iterdir()):
            relative = path.relative_to(root).as_posix()
            if path.is_symlink() or path == program or relative in ("Resources", "_CodeSignature"):
                continue
            may_hold_code = "/" not in relative or relative.startswith(NESTED_FOLDERS)
            if path.is_dir():
                if is_bundle(path) and may_hold_code:
                    found.append(path)
                else:
                    look(path)
            elif may_hold_code and path.name not in PLAIN_FILES:
                if not macho.is_macho(path.read_bytes()[:4]):
                    raise SigningError(f"{relative} is not code, and only code may lie there")
                found.append(path)

    look(root)
    return found


def nested_deepest_first(path):
    """Everything inside a bundle that must be signed before the bundle is, in that order."""
    if not path.is_dir():
        return []
    layout = Layout(path)
    return [code for outer in nested_code(layout.root, layout.program)
            for code in [*nested_deepest_first(outer), outer]]


def sign(path):
    """Signs a bundle or a single Mach-O file, what is nested in it first. Returns the code hash of each processor."""
    if not path.is_dir():
        return sign_program(path, path.stem, None, None)
    layout = Layout(path)
    nested = {code: sign(code) for code in nested_code(layout.root, layout.program)}
    seal = plistlib.dumps(resource_seal(layout, nested), sort_keys=True)
    signature = layout.root / "_CodeSignature"
    signature.mkdir(exist_ok=True)
    (signature / "CodeResources").write_bytes(seal)
    return sign_program(layout.program, layout.identifier, layout.information.read_bytes(), seal)


def resource_seal(layout, nested):
    """The content of CodeResources: everything in the bundle but the program and the signature itself."""
    files, files2 = {}, {}
    for path in sealed_paths(layout, nested):
        relative = path.relative_to(layout.root).as_posix()
        if path in nested:
            hashes = nested[path]
            files2[relative] = {"cdhash": hashes[0],
                                "requirement": " or ".join(f'cdhash H"{code_hash.hex()}"' for code_hash in hashes)}
        elif path.is_symlink():
            files2[relative] = {"symlink": os.readlink(path)}
        else:
            data = path.read_bytes()
            sha1, sha256 = hashlib.sha1(data).digest(), {"hash2": hashlib.sha256(data).digest()}
            optional = {"optional": True} if relative.startswith("Resources/") and ".lproj/" in relative else {}
            if relative not in ("Info.plist", "PkgInfo"):
                files2[relative] = {**sha256, **optional}
            if relative.startswith("Resources/") or relative == "version.plist":
                files[relative] = {"hash": sha1, **optional} if optional else sha1
    return {"files": files, "files2": files2, "rules": RULES, "rules2": RULES2}


def sealed_paths(layout, nested):
    """Files, symbolic links and nested code below the root, each once."""
    paths = []
    for folder, folders, names in os.walk(layout.root):
        here = Path(folder)
        paths += [here / name for name in folders if (here / name) in nested or (here / name).is_symlink()]
        folders[:] = sorted(name for name in folders if (here / name) not in nested and name != "_CodeSignature"
                            and not (here / name).is_symlink())
        paths += [here / name for name in names if here / name != layout.program and name != ".DS_Store"]
    return sorted(paths)


def sign_program(path, identifier, information, seal):
    """Signs every slice of a Mach-O file in place and returns the code hashes."""
    data = path.read_bytes()
    if not macho.is_macho(data):
        raise SigningError(f"{path.name} is not a Mach-O file that can be signed")
    signed = [sign_slice(part, path.name, identifier, information, seal) for part in macho.slices(data)]
    parts = [part for part, _ in signed]
    path.write_bytes(parts[0] if data[:4] == struct.pack("<I", macho.MAGIC_64) else macho.join(parts))
    return [code_hash for _, code_hash in signed]


def sign_slice(data, name, identifier, information, seal):
    """(signed slice, code hash). The linker's own ad-hoc signature makes the room, and this one takes its place."""
    image = macho.read_image(data)
    command, text, link = (image.command(macho.LC_CODE_SIGNATURE), image.segment("__TEXT"),
                           image.segment("__LINKEDIT"))
    if command is None or text is None or link is None:
        raise SigningError(f"{name} ({image.processor}) has no room for a signature: link it with -adhoc_codesign")
    limit = struct.unpack_from("<I", data, command + 8)[0]
    code = bytearray(data[:limit])
    special = [hashlib.sha256(part).digest() if part is not None else bytes(32)
               for part in (seal, blob(REQUIREMENTS, struct.pack(">I", 0)), information)]
    size = signature_size(identifier, len(special), limit)
    padded = -(-size // 16) * 16

    # The load commands are part of what is hashed, so they must tell the new size first.
    link_size = limit + padded - link.file_offset
    page = 0x4000 if image.cpu == macho.ARM64 else 0x1000
    struct.pack_into("<2I", code, command + 8, limit, padded)
    struct.pack_into("<Q", code, link.command + 32, -(-link_size // page) * page)
    struct.pack_into("<Q", code, link.command + 48, link_size)

    directory = code_directory(bytes(code), identifier, special, text, image.filetype == macho.MH_EXECUTE)
    signature = super_blob(directory)
    return bytes(code) + signature.ljust(padded, b"\0"), hashlib.sha256(directory).digest()[:20]


def blob(magic, body):
    return struct.pack(">2I", magic, 8 + len(body)) + body


def directory_size(identifier, special_count, limit):
    pages = -(-limit >> PAGE_BITS)
    return HEADER_SIZE + len(identifier.encode()) + 1 + 32 * (special_count + pages)


def signature_size(identifier, special_count, limit):
    index = 12 + 3 * 8
    return index + directory_size(identifier, special_count, limit) + 12 + 8


def code_directory(code, identifier, special, text, is_program):
    """The hashes: of what lies outside the code (resource seal, requirements, information dictionary), and of each page."""
    name = identifier.encode() + b"\0"
    pages = [code[start:start + (1 << PAGE_BITS)] for start in range(0, len(code), 1 << PAGE_BITS)]
    hash_offset = HEADER_SIZE + len(name) + 32 * len(special)
    none = 0
    header = struct.pack(
        ">9I4B4I4Q", CODE_DIRECTORY, directory_size(identifier, len(special), len(code)), VERSION, FLAG_ADHOC,
        hash_offset, HEADER_SIZE, len(special), len(pages), len(code),
        32, SHA256, none, PAGE_BITS,
        none, none, none, none,  # spare, scatter, team, spare
        none, text.file_offset, text.file_size, MAIN_BINARY if is_program else none)
    return header + name + b"".join(special) + b"".join(hashlib.sha256(page).digest() for page in pages)


def super_blob(directory):
    """Code directory, empty requirements and an empty signature: the mark of an ad-hoc identity."""
    parts = [(SLOT_CODE_DIRECTORY, directory), (SLOT_REQUIREMENTS, blob(REQUIREMENTS, struct.pack(">I", 0))),
             (SLOT_SIGNATURE, blob(SIGNATURE_WRAPPER, b""))]
    index, body, offset = b"", b"", 12 + 8 * len(parts)
    for slot, part in parts:
        index += struct.pack(">2I", slot, offset + len(body))
        body += part
    return struct.pack(">3I", EMBEDDED_SIGNATURE, offset + len(body), len(parts)) + index + body
