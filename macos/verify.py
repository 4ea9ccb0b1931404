"""Verifies the ad-hoc signature of a bundle from what lies on the disk, with no knowledge of how it was signed.

`python3 -m macos.verify Tarnwick.app` prints one line for each signed program and exits 0, or prints what is wrong and
exits 1. Every byte of the bundle is accounted for: it is hashed, or it can have but one value.
"""
import hashlib
import os
import plistlib
import re
import stat
import struct
import sys
from pathlib import Path

from macos import archive, information, macho

EMBEDDED_SIGNATURE = 0xFADE0CC0
CODE_DIRECTORY, INFORMATION, REQUIREMENTS, RESOURCES = 0, 1, 2, 3  # slots, of blobs or of hashes
ENTITLEMENTS, DER_ENTITLEMENTS, IDENTITY = 5, 7, 0x10000
MAGIC = {CODE_DIRECTORY: 0xFADE0C02, REQUIREMENTS: 0xFADE0C01, ENTITLEMENTS: 0xFADE7171, DER_ENTITLEMENTS: 0xFADE7172,
         IDENTITY: 0xFADE0B01}
PLAIN_SLOTS = [CODE_DIRECTORY, REQUIREMENTS, IDENTITY]
ENTITLED_SLOTS = [CODE_DIRECTORY, REQUIREMENTS, ENTITLEMENTS, DER_ENTITLEMENTS, IDENTITY]
HEADER = struct.Struct(">9I4B4I4Q2I")
VERSION = 0x20500  # the one that names the runtime's version
FLAGS = 0x10002  # ad hoc, hardened runtime
SHA256, SHA256_SIZE, PAGE_BITS = 2, 32, 12
LARGEST_PADDING = 15
# The right to load an update framework that is signed ad hoc too: nobody's libraries have the team of nobody's program.
LIBRARY_ENTITLEMENT = "com.apple.security.cs.disable-library-validation"
# The same in DER: a version, then a dictionary of one pair.
DER_ENTITLEMENT = b"\x70\x3c\x02\x01\x01\xb0\x37\x30\x35\x0c\x30" + LIBRARY_ENTITLEMENT.encode() + b"\x01\x01\xff"
UNSEALED = ("Info.plist", "PkgInfo")


class VerificationError(Exception):
    """The signature does not fit what it signs; the text says where."""


class CodeDirectory:
    """One slice's hashes."""

    def __init__(self, file, image, entitled):
        self.name, self.image, self.entitled = f"{file} ({image.processor})", image, entitled
        place = image.signature()
        if place is None:
            raise VerificationError(f"{self.name} is not signed")
        self.offset, size = place
        self.require(self.offset + size == len(image.data), "the signature is not at the end of the program")
        self.blobs = self.read_blobs(image.data[self.offset:])
        self.data = self.blobs[CODE_DIRECTORY]
        self.require(len(self.data) > HEADER.size, "the signature has no code directory")
        self.read_header()

    def require(self, condition, sentence):
        """Refuses the program unless the condition holds."""
        if not condition:
            raise VerificationError(f"{self.name}: {sentence}")

    def read_blobs(self, signature):
        """{slot: blob} of an embedded signature: its parts in order, with nothing between them and zeros behind."""
        magic, length, count = struct.unpack_from(">3I", signature)
        slots = ENTITLED_SLOTS if self.entitled else PLAIN_SLOTS
        self.require(magic == EMBEDDED_SIGNATURE and length <= len(signature), "the signature is damaged")
        self.require(len(signature) - length <= LARGEST_PADDING and not any(signature[length:]),
                     "there is something after the signature")
        self.require(count == len(slots), "the signature has other parts than it should")
        blobs, position = {}, 12 + 8 * count
        for entry, slot in enumerate(slots):
            kind, start = struct.unpack_from(">2I", signature, 12 + 8 * entry)
            blob_magic, size = struct.unpack_from(">2I", signature, start)
            self.require((kind, start, blob_magic) == (slot, position, MAGIC[slot]) and size >= 8,
                         "the signature has other parts than it should")
            blobs[slot] = signature[start:start + size]
            position += size
        self.require(position == length, "the signature has other parts than it should")
        return blobs

    def read_header(self):
        """The header holds what the program and the rest of the code directory determine, and nothing else."""
        (_, length, version, flags, hash_offset, name_offset, self.special_count, self.page_count, limit, hash_size,
         hash_type, platform, page_bits, spare, scatter, team, another_spare, long_limit, text_offset, text_size, executable,
         runtime, pre_encryption) = HEADER.unpack_from(self.data)
        self.require(version == VERSION and flags == FLAGS, "the signature is not ad hoc with the hardened runtime")
        self.require((hash_size, hash_type, page_bits) == (SHA256_SIZE, SHA256, PAGE_BITS),
                     "the hashes are not SHA-256 of pages of 4096 bytes")
        self.require(not any((platform, spare, scatter, team, another_spare, long_limit, pre_encryption)),
                     "the code directory has something where nothing belongs")
        self.require(limit == self.offset, "the signature does not cover all of the code")
        self.require(self.page_count == -(-limit >> PAGE_BITS), "the signature has too few page hashes")
        self.identifier = macho.text_at(self.data, name_offset)
        end_of_name = HEADER.size + len(self.identifier.encode()) + 1
        last = DER_ENTITLEMENTS if self.entitled else RESOURCES
        self.require(name_offset == HEADER.size and self.special_count == last
                     and hash_offset == end_of_name + SHA256_SIZE * self.special_count
                     and length == hash_offset + SHA256_SIZE * self.page_count == len(self.data),
                     "the code directory's parts do not lie where they should")
        self.hash_offset = hash_offset
        text = self.image.segment("__TEXT")
        self.require(text and (text_offset, text_size) == (text.file_offset, text.file_size),
                     "the signature names another executable segment")
        self.require(executable == (self.image.filetype == macho.MH_EXECUTE),
                     "the signature takes a program for a library, or a library for one")
        build = self.image.command(macho.LC_BUILD_VERSION)
        self.require(build and runtime == struct.unpack_from("<I", self.image.data, build + 16)[0],
                     "the signature names another version of the hardened runtime than the program's SDK")
        link = self.image.segment("__LINKEDIT")
        self.require(link and link.file_offset + link.file_size == len(self.image.data),
                     "the last segment does not end where the signature does")

    @property
    def code_hash(self):
        return hashlib.sha256(self.data).digest()[:20]

    def hash_at(self, number):
        """The hash of a page, or of something outside of the code when the number is negative."""
        start = self.hash_offset + number * SHA256_SIZE
        return self.data[start:start + SHA256_SIZE]

    def verify(self, outside):
        """Every byte before the signature is what was signed, and so is what lies outside, {slot: (content, name)}."""
        for number in range(self.page_count):
            start = number << PAGE_BITS
            page = self.image.data[start:min(self.offset, start + (1 << PAGE_BITS))]
            self.require(hashlib.sha256(page).digest() == self.hash_at(number),
                         f"the code was changed after signing, at {start:#x}")
        inside = {slot: (self.blobs[slot], "a part of the signature")
                  for slot in (REQUIREMENTS, ENTITLEMENTS, DER_ENTITLEMENTS) if slot in self.blobs}
        signed = {**outside, **inside}
        for slot in range(1, self.special_count + 1):
            content, what = signed.get(slot, (None, "something that is not there"))
            expected = bytes(SHA256_SIZE) if content is None else hashlib.sha256(content).digest()
            self.require(self.hash_at(-slot) == expected, f"{what} is not the one that was signed")
        self.require(len(self.blobs[IDENTITY]) == 8, "it is signed with an identity, which only a Mac can verify")
        if self.entitled:
            self.verify_entitlement()

    def verify_entitlement(self):
        """The one right, in both of its spellings, and no other."""
        try:
            rights = plistlib.loads(self.blobs[ENTITLEMENTS][8:])
        except Exception:  # the parsers below plistlib let through whatever goes wrong in them, of any class
            rights = None
        self.require(rights == {LIBRARY_ENTITLEMENT: True} and self.blobs[DER_ENTITLEMENTS][8:] == DER_ENTITLEMENT,
                     "it has other entitlements than the one to load its update framework")

    def describe(self):
        right = ", loads any library" if self.entitled else ""
        return (f"{self.name}: {self.identifier}, ad hoc, hardened runtime{right}, {self.page_count} pages, "
                f"code hash {self.code_hash.hex()}")


def verify_program(path, outside=None, entitled=False):
    """The code directories of a Mach-O file, all verified."""
    directories = []
    for image in macho.read_file(path):
        try:
            directories.append(CodeDirectory(path.name, image, entitled))
            directories[-1].verify(outside or {})
        except struct.error:
            raise VerificationError(f"{path.name} ({image.processor}): the signature is damaged") from None
    return directories


def verify_layout(bundle):
    """Nothing lies beside an application's contents, and everything is of the kind and has the permissions that belong
    there: the signature does not say."""
    entries = sorted(path.name for path in bundle.iterdir()) if is_folder(bundle) else []
    if entries != ["Contents"]:
        raise VerificationError(f"{bundle.name} holds {', '.join(entries) or 'nothing'}, not Contents alone")
    frameworks = bundle / "Contents" / "Frameworks"
    for path in archive.entries(bundle):
        name, mode = path.relative_to(bundle.parent).as_posix(), path.lstat().st_mode
        if stat.S_ISLNK(mode):
            if frameworks not in path.parents or not leads_inside(path, frameworks):
                raise VerificationError(f"{name} is a link")
        elif not stat.S_ISREG(mode) and not stat.S_ISDIR(mode):
            raise VerificationError(f"{name} is neither a file nor a folder")
        elif stat.S_IMODE(mode) != archive.expected_mode(path):
            raise VerificationError(f"{name} has the permissions {stat.S_IMODE(mode):o}, not "
                                    f"{archive.expected_mode(path):o}")
        if path.suffix == ".framework" and path.parent == frameworks:
            verify_framework_layout(path)


def is_folder(path):
    return path.is_dir() and not path.is_symlink()


def leads_inside(link, folder):
    """Whether a link's end is there, below the same framework."""
    framework = folder / link.relative_to(folder).parts[0]
    return link.exists() and framework.resolve() in link.resolve().parents


def verify_framework_layout(framework):
    """One version, a link that names it, and links to what is in it."""
    versions = framework / "Versions"
    names = sorted(os.listdir(versions)) if is_folder(versions) else []
    current = versions / "Current"
    if len(names) != 2 or not current.is_symlink() or os.readlink(current) not in names:
        raise VerificationError(f"{framework.name} does not hold one version and a link that names it")
    for path in framework.iterdir():
        if path != versions and (not path.is_symlink() or os.readlink(path) != f"Versions/Current/{path.name}"):
            raise VerificationError(f"{framework.name}: {path.name} is no link into the current version")


def verify_application(bundle):
    """(code directories of the application's program, lines that describe everything in it)."""
    verify_layout(bundle)
    frameworks = any((bundle / "Contents" / "Frameworks").glob("*.framework"))
    return verify_bundle(bundle, entitled=frameworks)


def verify_bundle(bundle, entitled=False):
    """The same for any bundle."""
    if (bundle / "Contents").is_dir():
        root, info = bundle / "Contents", bundle / "Contents" / "Info.plist"
        programs = root / "MacOS"
    else:
        root = bundle / "Versions" / "Current"
        info, programs = root / "Resources" / "Info.plist", root
    seal = root / "_CodeSignature" / "CodeResources"
    for needed in (info, seal):
        if not needed.is_file():
            raise VerificationError(f"{bundle.name} has no {needed.relative_to(root)}")
    dictionary = information.read(info)
    program = programs / information.text(dictionary, "CFBundleExecutable")
    if program.parent != programs or not program.is_file():
        raise VerificationError(f"{bundle.name}: the program that Info.plist names is not there")
    outside = {INFORMATION: (info.read_bytes(), "Info.plist"), RESOURCES: (seal.read_bytes(), "_CodeSignature/CodeResources")}
    directories = verify_program(program, outside, entitled)
    for directory in directories:
        if directory.identifier != information.text(dictionary, "CFBundleIdentifier"):
            raise VerificationError(f"{directory.name} is signed as {directory.identifier}")
    try:
        nested = verify_seal(bundle.name, root, program, information.read(seal))
    except (KeyError, TypeError, AttributeError, ValueError):
        raise VerificationError(f"{bundle.name}: _CodeSignature/CodeResources is not a seal") from None
    return directories, [directory.describe() for directory in directories] + nested


def verify_seal(name, root, program, seal):
    """Every sealed thing is there and as it was, and nothing else is. Returns lines that describe nested code."""
    lines, sealed = [], seal["files2"]
    for relative, entry in sealed.items():
        path = root / relative
        if "symlink" in entry:
            if not path.is_symlink() or os.readlink(path) != entry["symlink"]:
                raise VerificationError(f"{name}: the link {relative} was changed after signing")
        elif path.is_symlink():
            raise VerificationError(f"{name}: {relative} was replaced by a link after signing")
        elif not path.exists():
            if not entry.get("optional"):
                raise VerificationError(f"{name}: {relative} is missing")
        elif "cdhash" in entry:
            lines += verify_nested(name, path, relative, entry)
        elif not path.is_file() or hashlib.sha256(path.read_bytes()).digest() != entry["hash2"]:
            raise VerificationError(f"{name}: {relative} was changed after signing")
    for relative, entry in seal["files"].items():
        expected = entry["hash"] if isinstance(entry, dict) else entry
        if (root / relative).exists() and hashlib.sha1((root / relative).read_bytes()).digest() != expected:
            raise VerificationError(f"{name}: {relative} was changed after signing")
    verify_nothing_added(name, root, program, sealed)
    return lines


def verify_nested(name, path, relative, entry):
    """Code inside is intact by itself, and is the very code that the outer seal names."""
    if path.is_dir():
        directories, lines = verify_bundle(path)
    else:
        directories = verify_program(path)
        lines = [directory.describe() for directory in directories]
    allowed = {bytes.fromhex(text) for text in re.findall('cdhash H"([0-9a-f]{40})"', entry["requirement"])}
    if entry["cdhash"] not in allowed or any(directory.code_hash not in allowed for directory in directories):
        raise VerificationError(f"{name}: {relative} is not the code that was sealed")
    return lines


def verify_nothing_added(name, root, program, sealed):
    """A file that the seal does not know may have come from anywhere."""
    for folder, folders, names in os.walk(root):
        here = Path(folder)
        links = [folder_name for folder_name in folders if (here / folder_name).is_symlink()]
        if here == root / "_CodeSignature":
            names = [file_name for file_name in names if file_name != "CodeResources"]
        folders[:] = [folder_name for folder_name in folders
                      if (here / folder_name).relative_to(root).as_posix() not in sealed]
        for file_name in names + links:
            path = here / file_name
            relative = path.relative_to(root).as_posix()
            if path != program and relative not in sealed and relative not in UNSEALED:
                raise VerificationError(f"{name}: {relative} was added after signing")


def main(arguments):
    """Status 0 when the bundle is intact, 1 with a sentence otherwise."""
    if len(arguments) != 1:
        print("usage: python3 -m macos.verify BUNDLE", file=sys.stderr)
        return 2
    try:
        for line in verify_application(Path(arguments[0]))[1]:
            print(line)
    except (VerificationError, information.InformationError, macho.MachOError, OSError) as error:
        print(f"verify: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
