"""Signs bundles ad hoc, with the hardened runtime, where Apple's codesign is not to be had.

Each Mach-O file gets a code directory that holds the hash of every page, of the information dictionary and of the
resource seal. The seal, `_CodeSignature/CodeResources`, lists the hash of every other file of the bundle; what is
signed by itself inside (a framework, its helpers) is listed by its own code hash. So nested code is signed first.
"""
import hashlib
import os
import plistlib
import struct
from pathlib import Path

from macos import information, macho

EMBEDDED_SIGNATURE = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
REQUIREMENTS = 0xFADE0C01
SIGNATURE_WRAPPER = 0xFADE0B01
ENTITLEMENTS, DER_ENTITLEMENTS = 0xFADE7171, 0xFADE7172
SLOT_CODE_DIRECTORY, SLOT_INFORMATION, SLOT_REQUIREMENTS, SLOT_RESOURCES = 0, 1, 2, 3
SLOT_ENTITLEMENTS, SLOT_DER_ENTITLEMENTS, SLOT_SIGNATURE = 5, 7, 0x10000  # an empty signature marks an ad-hoc one
# The hardened runtime loads only libraries of the system and of the program's own team. An ad-hoc signature has no team,
# so a program that is to load an ad-hoc framework needs this right.
LIBRARY_ENTITLEMENT = "com.apple.security.cs.disable-library-validation"

VERSION = 0x20500  # with the range of the executable segment and the version of the hardened runtime
FLAG_ADHOC, FLAG_RUNTIME = 0x2, 0x10000
MAIN_BINARY = 0x1
SHA256 = 2
PAGE_BITS = 12
HEADER = struct.Struct(">9I4B4I4Q2I")

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
            dictionary = information.read(self.information)
            self.identifier = information.text(dictionary, "CFBundleIdentifier")
            self.program = programs / information.text(dictionary, "CFBundleExecutable")
        except information.InformationError as error:
            raise SigningError(f"{bundle.name}: {error}") from None


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
    """Signs a bundle or a single Mach-O file, what is nested in it first. Returns the code hash of each processor.

    Where a framework is nested, the program gets the right to load it.
    """
    if not path.is_dir():
        return sign_program(path, path.stem, None, None)
    layout = Layout(path)
    nested = {code: sign(code) for code in nested_code(layout.root, layout.program)}
    seal = plistlib.dumps(resource_seal(layout, nested), sort_keys=True)
    signature = layout.root / "_CodeSignature"
    signature.mkdir(exist_ok=True)
    (signature / "CodeResources").write_bytes(seal)
    entitled = any(code.suffix == ".framework" for code in nested)
    return sign_program(layout.program, layout.identifier, layout.information.read_bytes(), seal, entitled)


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


def sign_program(path, identifier, dictionary, seal, entitled=False):
    """Signs every slice of a Mach-O file in place and returns the code hashes."""
    data = path.read_bytes()
    if not macho.is_macho(data):
        raise SigningError(f"{path.name} is not a Mach-O file that can be signed")
    signed = [sign_slice(image, path.name, identifier, dictionary, seal, entitled) for image in macho.read_file(path)]
    parts = [part for part, _ in signed]
    path.write_bytes(parts[0] if data[:4] == struct.pack("<I", macho.MAGIC_64) else macho.join(parts))
    return [code_hash for _, code_hash in signed]


def sign_slice(image, name, identifier, dictionary, seal, entitled):
    """(signed slice, code hash). The linker's own ad-hoc signature makes the room, and this one takes its place."""
    command, build = image.command(macho.LC_CODE_SIGNATURE), image.command(macho.LC_BUILD_VERSION)
    text, link = image.segment("__TEXT"), image.segment("__LINKEDIT")
    if build is None:
        raise SigningError(f"{name} ({image.processor}) does not say with which SDK it was built")
    if command is None or text is None or link is None:
        raise SigningError(f"{name} ({image.processor}) has no room for a signature: link it with -adhoc_codesign")
    limit, sdk = (struct.unpack_from("<I", image.data, place)[0] for place in (command + 8, build + 16))
    code = bytearray(image.data[:limit])
    parts = signed_parts(entitled)
    special = special_hashes({SLOT_INFORMATION: dictionary, SLOT_RESOURCES: seal, **parts})
    size = signature_size(identifier, special, parts, limit)
    padded = -(-size // 16) * 16

    # The load commands are part of what is hashed, so they must tell the new size first.
    link_size = limit + padded - link.file_offset
    page = 0x4000 if image.cpu == macho.ARM64 else 0x1000
    struct.pack_into("<2I", code, command + 8, limit, padded)
    struct.pack_into("<Q", code, link.command + 32, -(-link_size // page) * page)
    struct.pack_into("<Q", code, link.command + 48, link_size)

    directory = code_directory(bytes(code), identifier, special, text, image.filetype == macho.MH_EXECUTE, sdk)
    signature = super_blob({SLOT_CODE_DIRECTORY: directory, **parts, SLOT_SIGNATURE: blob(SIGNATURE_WRAPPER, b"")})
    return bytes(code) + signature.ljust(padded, b"\0"), hashlib.sha256(directory).digest()[:20]


def blob(magic, body):
    return struct.pack(">2I", magic, 8 + len(body)) + body


def signed_parts(entitled):
    """{slot: blob} of what lies beside the code directory and is signed by it."""
    parts = {SLOT_REQUIREMENTS: blob(REQUIREMENTS, struct.pack(">I", 0))}
    if entitled:
        parts[SLOT_ENTITLEMENTS] = blob(ENTITLEMENTS, entitlements())
        parts[SLOT_DER_ENTITLEMENTS] = blob(DER_ENTITLEMENTS, der_entitlements())
    return parts


def entitlements():
    """The right to load the update framework, as a property list."""
    return plistlib.dumps({LIBRARY_ENTITLEMENT: True})


def der_entitlements():
    """The same as newer systems read it: a version, then a dictionary."""
    def element(tag, content):
        return bytes([tag, len(content)]) + content
    pair = element(0x30, element(0x0C, LIBRARY_ENTITLEMENT.encode()) + element(0x01, b"\xff"))
    return element(0x70, element(0x02, b"\x01") + element(0xB0, pair))


def special_hashes(contents):
    """The hashes of what lies outside the code, from the last slot down to the first; zeros where there is nothing."""
    return [hashlib.sha256(contents[slot]).digest() if contents.get(slot) is not None else bytes(32)
            for slot in range(max(contents), 0, -1)]


def directory_size(identifier, special, limit):
    pages = -(-limit >> PAGE_BITS)
    return HEADER.size + len(identifier.encode()) + 1 + 32 * (len(special) + pages)


def signature_size(identifier, special, parts, limit):
    """Of the index, the code directory, the other parts and the empty identity."""
    index = 12 + 8 * (len(parts) + 2)
    return index + directory_size(identifier, special, limit) + sum(map(len, parts.values())) + 8


def code_directory(code, identifier, special, text, is_program, sdk):
    """The hashes: of what lies outside the code, and of each page. The hardened runtime acts as in the SDK's system."""
    name = identifier.encode() + b"\0"
    pages = [code[start:start + (1 << PAGE_BITS)] for start in range(0, len(code), 1 << PAGE_BITS)]
    hash_offset = HEADER.size + len(name) + 32 * len(special)
    none = 0
    header = HEADER.pack(
        CODE_DIRECTORY, directory_size(identifier, special, len(code)), VERSION, FLAG_ADHOC | FLAG_RUNTIME,
        hash_offset, HEADER.size, len(special), len(pages), len(code),
        32, SHA256, none, PAGE_BITS,
        none, none, none, none,  # spare, scatter, team, spare
        none, text.file_offset, text.file_size, MAIN_BINARY if is_program else none,
        sdk, none)  # nothing is encrypted
    return header + name + b"".join(special) + b"".join(hashlib.sha256(page).digest() for page in pages)


def super_blob(parts):
    """The parts behind an index of their slots."""
    index, body, offset = b"", b"", 12 + 8 * len(parts)
    for slot, part in parts.items():
        index += struct.pack(">2I", slot, offset + len(body))
        body += part
    return struct.pack(">3I", EMBEDDED_SIGNATURE, offset + len(body), len(parts)) + index + body
