"""Verifies the signature of a bundle from what lies on the disk, with no knowledge of how it was signed.

`python3 -m macos.verify Tarnwick.app` prints one line for each signed program and exits 0, or prints what is wrong and exits 1.
"""
import hashlib
import os
import plistlib
import re
import struct
import sys
from pathlib import Path
from xml.parsers.expat import ExpatError

from macos import macho

EMBEDDED_SIGNATURE = 0xFADE0CC0
CODE_DIRECTORY = 0xFADE0C02
INFORMATION, REQUIREMENTS, RESOURCES = 1, 2, 3  # numbers of the special hashes
IDENTITY = 0x10000  # the slot of who signed; its blob is nothing but a header when nobody did
OLDEST_VERSION = 0x20400  # the first with the range of the executable segment
AD_HOC = 0x2
FLAGS = {AD_HOC: "ad hoc", 0x10000: "hardened runtime", 0x20000: "by the linker only"}
LINKER_SIGNED = 0x20000
UNSEALED = ("Info.plist", "PkgInfo")


class VerificationError(Exception):
    """The signature does not fit what it signs; the text says where."""


class CodeDirectory:
    """One slice's hashes."""

    def __init__(self, name, image):
        self.name, self.image = f"{name} ({image.processor})", image
        place = image.signature()
        if place is None:
            raise VerificationError(f"{self.name} is not signed")
        offset, size = place
        if offset + size != len(image.data):
            raise VerificationError(f"{self.name}: the signature is not at the end of the program")
        self.blobs = self.read_blobs(image.data[offset:offset + size])
        data = self.data = self.blobs.get(0, b"")
        if len(data) < 88 or struct.unpack_from(">I", data)[0] != CODE_DIRECTORY:
            raise VerificationError(f"{self.name}: the signature has no code directory")
        (_, _, self.version, self.flags, self.hash_offset, name_offset, self.special_count, self.page_count,
         self.limit) = struct.unpack_from(">9I", data)
        self.hash_size, self.hash_type, _, self.page_bits = data[36:40]
        self.executable = struct.unpack_from(">3Q", data, 64)
        self.identifier = macho.text_at(data, name_offset)
        self.signature_offset = offset

    def read_blobs(self, signature):
        """{slot: content} of an embedded signature."""
        magic, _, count = struct.unpack_from(">3I", signature)
        if magic != EMBEDDED_SIGNATURE:
            raise VerificationError(f"{self.name}: the signature is damaged")
        entries = [struct.unpack_from(">2I", signature, 12 + 8 * entry) for entry in range(count)]
        return {slot: signature[start:start + struct.unpack_from(">I", signature, start + 4)[0]]
                for slot, start in entries}

    @property
    def code_hash(self):
        return hashlib.sha256(self.data).digest()[:20]

    def hash_at(self, number):
        """The hash of a page, or of something outside of the code when the number is negative."""
        start = self.hash_offset + number * self.hash_size
        return self.data[start:start + self.hash_size]

    def verify_code(self):
        """Every byte before the signature is what was signed."""
        if (self.hash_size, self.hash_type) != (32, 2):
            raise VerificationError(f"{self.name}: the hashes are not SHA-256")
        if self.limit != self.signature_offset:
            raise VerificationError(f"{self.name}: the signature does not cover all of the code")
        page = 1 << self.page_bits
        if self.page_count != -(-self.limit // page):
            raise VerificationError(f"{self.name}: the signature has too few page hashes")
        for number in range(self.page_count):
            content = self.image.data[number * page:min(self.limit, (number + 1) * page)]
            if hashlib.sha256(content).digest() != self.hash_at(number):
                raise VerificationError(f"{self.name}: the code was changed after signing, at {number * page:#x}")
        text = self.image.segment("__TEXT")
        if self.version < OLDEST_VERSION or self.executable[:2] != (text.file_offset, text.file_size):
            raise VerificationError(f"{self.name}: the signature names another executable segment")
        if bool(self.executable[2] & 1) != (self.image.filetype == macho.MH_EXECUTE):
            raise VerificationError(f"{self.name}: the signature takes a program for a library, or a library for one")
        linkedit = self.image.segment("__LINKEDIT")
        if linkedit.file_offset + linkedit.file_size != len(self.image.data):
            raise VerificationError(f"{self.name}: the last segment does not end where the signature does")

    def verify_special(self, number, content, what):
        """Something outside of the code is what was signed."""
        if number > self.special_count or self.hash_at(-number) != hashlib.sha256(content).digest():
            raise VerificationError(f"{self.name}: {what} is not the one that was signed")

    def verify_identity(self):
        """It is ad hoc exactly when nobody's identity signed it."""
        if bool(self.flags & AD_HOC) != (len(self.blobs.get(IDENTITY, b"")) <= 8):
            raise VerificationError(f"{self.name}: the signature does not fit its identity")

    def describe(self):
        flags = ", ".join(text for bit, text in FLAGS.items() if self.flags & bit) or "with an identity"
        return f"{self.name}: {self.identifier}, {flags}, {self.page_count} pages, code hash {self.code_hash.hex()}"


def verify_program(path, information=None, seal=None):
    """The code directories of a Mach-O file, all verified."""
    directories = []
    for part in macho.slices(path.read_bytes()):
        directory = CodeDirectory(path.name, macho.read_image(part))
        directory.verify_code()
        if directory.flags & LINKER_SIGNED:
            raise VerificationError(f"{directory.name}: only the linker signed it, which seals no bundle")
        directory.verify_identity()
        directory.verify_special(REQUIREMENTS, directory.blobs.get(REQUIREMENTS, b""), "the list of requirements")
        if information is not None:
            directory.verify_special(INFORMATION, information, "Info.plist")
            directory.verify_special(RESOURCES, seal, "_CodeSignature/CodeResources")
        directories.append(directory)
    return directories


def read_dictionary(path):
    """The property list in a file."""
    try:
        return plistlib.loads(path.read_bytes())
    except (plistlib.InvalidFileException, ExpatError) as error:
        raise VerificationError(f"{path.name} is not a property list: {error}") from None


def verify_bundle(bundle):
    """(code directories of the bundle's program, lines that describe everything in it)."""
    if (bundle / "Contents").is_dir():
        root, information = bundle / "Contents", bundle / "Contents" / "Info.plist"
        programs = root / "MacOS"
    else:
        root = bundle / "Versions" / "Current"
        information, programs = root / "Resources" / "Info.plist", root
    seal = root / "_CodeSignature" / "CodeResources"
    for needed in (information, seal):
        if not needed.is_file():
            raise VerificationError(f"{bundle.name} has no {needed.relative_to(root)}")
    dictionary = read_dictionary(information)
    program = programs / dictionary["CFBundleExecutable"]
    directories = verify_program(program, information.read_bytes(), seal.read_bytes())
    for directory in directories:
        if directory.identifier != dictionary["CFBundleIdentifier"]:
            raise VerificationError(f"{directory.name} is signed as {directory.identifier}")
    nested = verify_seal(bundle.name, root, program, read_dictionary(seal))
    return directories, [directory.describe() for directory in directories] + nested


def verify_seal(name, root, program, seal):
    """Every sealed thing is there and as it was, and nothing else is. Returns lines that describe nested code."""
    lines, sealed = [], seal["files2"]
    for relative, entry in sealed.items():
        path = root / relative
        if "symlink" in entry:
            if not path.is_symlink() or os.readlink(path) != entry["symlink"]:
                raise VerificationError(f"{name}: the link {relative} was changed after signing")
        elif not path.exists():
            if not entry.get("optional"):
                raise VerificationError(f"{name}: {relative} is missing")
        elif "cdhash" in entry:
            lines += verify_nested(name, path, relative, entry)
        elif hashlib.sha256(path.read_bytes()).digest() != entry["hash2"]:
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
        folders[:] = [folder_name for folder_name in folders
                      if (here / folder_name).relative_to(root).as_posix() not in sealed
                      and (here / folder_name) != root / "_CodeSignature"]
        for file_name in names + links:
            path = here / file_name
            relative = path.relative_to(root).as_posix()
            if path != program and relative not in sealed and relative not in UNSEALED and file_name != ".DS_Store":
                raise VerificationError(f"{name}: {relative} was added after signing")


def main(arguments):
    """Status 0 when the bundle is intact, 1 with a sentence otherwise."""
    if len(arguments) != 1:
        print("usage: python3 -m macos.verify BUNDLE", file=sys.stderr)
        return 2
    try:
        for line in verify_bundle(Path(arguments[0]))[1]:
            print(line)
    except (VerificationError, macho.MachOError, struct.error, KeyError, OSError) as error:
        print(f"verify: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
