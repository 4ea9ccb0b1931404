"""Reads Mach-O files: the slices of a universal file, and the load commands, libraries and symbols of each."""
import platform
import struct
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

FAT_MAGIC = 0xCAFEBABE
MAGIC_64 = 0xFEEDFACF
ARM64 = 0x0100000C
PROCESSORS = {ARM64: "arm64", 0x01000007: "x86_64"}

LC_SYMTAB = 0x2
LC_DYSYMTAB = 0xB
LC_LOAD_DYLINKER = 0xE
LC_SEGMENT_64 = 0x19
MH_EXECUTE = 2
LC_CODE_SIGNATURE = 0x1D
ALIGNMENT = 14  # of every slice, as a power of two: the larger page of the two processors
LC_RPATH = 0x8000001C
LC_MAIN = 0x80000028
LC_BUILD_VERSION = 0x32
LIBRARY_COMMANDS = {0xC: "LC_LOAD_DYLIB", 0x80000018: "LC_LOAD_WEAK_DYLIB", 0x8000001F: "LC_REEXPORT_DYLIB",
                    0x20: "LC_LAZY_LOAD_DYLIB", 0x80000023: "LC_LOAD_UPWARD_DYLIB"}


class MachOError(Exception):
    """The file is not a Mach-O file of the kind that is read here."""


@dataclass
class Section:
    name: str
    address: int
    size: int
    first_stub: int  # of a section of stubs: where the numbers of their symbols begin in the table of these
    stub_size: int


@dataclass
class Segment:
    name: str
    address: int
    file_offset: int
    file_size: int
    protection: int  # what the system lets the segment become: read 1, write 2, execute 4
    command: int  # where the load command lies


@dataclass
class Import:
    symbol: str
    library: int  # from 1, in the order of the load commands; anything else is no library
    weak: bool


@dataclass
class LoadedLibrary:
    command: str
    install_name: str
    current: tuple  # version of the library that the program was linked with
    compatibility: tuple


@dataclass
class Image:
    """One processor's program or library."""
    data: bytes
    cpu: int
    filetype: int
    flags: int
    segments: list = field(default_factory=list)
    sections: list = field(default_factory=list)
    libraries: list = field(default_factory=list)  # LoadedLibrary, in the order of the load commands
    run_paths: list = field(default_factory=list)
    commands: list = field(default_factory=list)  # (command, where it lies)
    imports: list = field(default_factory=list)
    exports: list = field(default_factory=list)
    debug_symbols: int = 0

    @property
    def processor(self):
        return PROCESSORS.get(self.cpu, hex(self.cpu))

    def command(self, wanted):
        """Where the load command lies, or None."""
        return next((position for command, position in self.commands if command == wanted), None)

    def signature(self):
        """(offset, size) of the code signature, or None."""
        command = self.command(LC_CODE_SIGNATURE)
        return None if command is None else struct.unpack_from("<2I", self.data, command + 8)

    def segment(self, name):
        return next((segment for segment in self.segments if segment.name == name), None)


def text_at(data, start, end=None):
    """The bytes up to the first NUL as text."""
    stop = data.find(b"\0", start, end)
    return data[start:stop if stop >= 0 else end].decode(errors="replace")


def version_of(number):
    """A version as load commands keep it, without what its end has of zeros: 0xD0000 is (13, 0)."""
    major, minor, patch = number >> 16, number >> 8 & 0xFF, number & 0xFF
    return (major, minor, patch) if patch else (major, minor)


def is_macho(data):
    """Whether the file begins as one that can be read here."""
    return data[:4] in (struct.pack(">I", FAT_MAGIC), struct.pack("<I", MAGIC_64))


def slices(data):
    """The parts of a universal file, one for each processor; a thin file is its own only part."""
    if data[:4] == struct.pack("<I", MAGIC_64):
        return [data]
    if data[:4] != struct.pack(">I", FAT_MAGIC):
        raise MachOError("not a 64-bit Mach-O file")
    parts, end = [], 8 + 20 * struct.unpack_from(">I", data, 4)[0]
    for entry in range(8, end, 20):
        cpu, subtype, offset, size, alignment = struct.unpack_from(">5I", data, entry)
        if offset + size > len(data):
            raise MachOError("a slice reaches past the end of the file")
        if offset < end or any(data[end:offset]):
            raise MachOError("there is something between the slices of the file")
        if alignment != ALIGNMENT or offset % (1 << ALIGNMENT):
            raise MachOError("a slice does not lie on its boundary")
        if data[offset + 4:offset + 12] != struct.pack("<2I", cpu, subtype):
            raise MachOError("a slice is for another processor than the file says")
        parts.append(data[offset:offset + size])
        end = offset + size
    if end != len(data):
        raise MachOError("there is something after the slices of the file")
    return parts


def join(parts):
    """A universal file of these slices, each on a 16-kilobyte boundary as the system wants them."""
    with tempfile.TemporaryDirectory() as work:
        files = [Path(work) / str(number) for number in range(len(parts))]
        for file, part in zip(files, parts):
            file.write_bytes(part)
        whole = Path(work) / "whole"
        lipo = "lipo" if platform.system() == "Darwin" else "llvm-lipo-19"
        done = subprocess.run([lipo, "-create", "-segalign", "x86_64", "4000", *files, "-output", whole],
                              capture_output=True, text=True, check=False)
        if done.returncode:
            raise MachOError(f"the slices cannot be joined: {done.stderr.strip()}")
        return whole.read_bytes()


def read_file(path):
    """The images of a Mach-O file, one for each processor, whatever its bytes are."""
    try:
        return [read_image(part) for part in slices(path.read_bytes())]
    except MachOError as error:
        raise MachOError(f"{path.name}: {error}") from None
    except struct.error:
        raise MachOError(f"{path.name} ends before its tables do") from None


def read_image(data):
    """What the load commands of one slice say."""
    if len(data) < 32 or struct.unpack_from("<I", data)[0] != MAGIC_64:
        raise MachOError("not a 64-bit Mach-O file")
    cpu, _, filetype, count, _, flags = struct.unpack_from("<6I", data, 4)
    image = Image(bytes(data), cpu, filetype, flags)
    position = 32
    for _ in range(count):
        command, size = struct.unpack_from("<2I", data, position)
        if size < 8 or position + size > len(data):
            raise MachOError("a load command is damaged")
        image.commands.append((command, position))
        if command == LC_SEGMENT_64:
            read_segment(image, position)
        elif command in LIBRARY_COMMANDS:
            name, _, current, compatibility = struct.unpack_from("<4I", data, position + 8)
            image.libraries.append(LoadedLibrary(LIBRARY_COMMANDS[command],
                                                 text_at(image.data, position + name, position + size),
                                                 version_of(current), version_of(compatibility)))
        elif command == LC_RPATH:
            name = position + struct.unpack_from("<I", data, position + 8)[0]
            image.run_paths.append(text_at(image.data, name, position + size))
        elif command == LC_SYMTAB:
            read_symbols(image, position)
        position += size
    return image


def read_segment(image, position):
    """A segment and its sections."""
    name = text_at(image.data, position + 8, position + 24)
    address, _, offset, size = struct.unpack_from("<4Q", image.data, position + 24)
    protection, _, count = struct.unpack_from("<3I", image.data, position + 56)
    image.segments.append(Segment(name, address, offset, size, protection, position))
    for start in range(position + 72, position + 72 + 80 * count, 80):
        section = text_at(image.data, start, start + 16)
        address, size = struct.unpack_from("<2Q", image.data, start + 32)
        image.sections.append(Section(section, address, size, *struct.unpack_from("<2I", image.data, start + 68)))


def read_symbols(image, position):
    """What the image takes from libraries and what it offers to others."""
    table, count, strings, _ = struct.unpack_from("<4I", image.data, position + 8)
    for entry in range(table, table + 16 * count, 16):
        name, kind, _, description = struct.unpack_from("<I2BH", image.data, entry)
        if kind & 0xE0:
            image.debug_symbols += 1
        if kind & 0xE0 or not kind & 1:  # for the debugger, or not seen outside
            continue
        symbol = text_at(image.data, strings + name)
        if kind & 0x0E == 0:
            image.imports.append(Import(symbol, description >> 8, bool(description & 0x40)))
        else:
            image.exports.append(symbol)
