"""What the shipped program executes while a session is played: its own instructions, as the emulator logs them."""
import functools
import re
import shutil
import struct
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

from macos import macho

BUILD = Path(__file__).resolve().parents[2] / "build" / "macos"
PLACE = 0x6000000000  # where Slice.cpp maps the program
EMULATORS = {"x86_64": ["qemu-x86_64"], "arm64": ["qemu-aarch64", "-L", "/usr/aarch64-linux-gnu"]}
COMMANDS = {"x86_64": BUILD / "tarnwick-shipped", "arm64": BUILD / "tarnwick-shipped-arm64.elf"}
LOGGED = re.compile(r"\[[0-9a-f]+/([0-9a-f]+)/")


class ExecutionError(Exception):
    """Nothing can be measured; the text is for the person who asked for it."""


@dataclass
class Program:
    """One processor's slice: addresses count from its beginning."""
    code: range
    imports: dict  # where a call of an imported function goes through: its name


def must_exist(path):
    if not path.exists():
        raise ExecutionError(f"{path} is missing; ./dev test macos and ./dev bench build it")


@functools.cache
def program(processor):
    """What is where in the slice that is shipped."""
    path = BUILD / "Tarnwick.app" / "Contents" / "MacOS" / "Tarnwick"
    must_exist(path)
    try:
        return program_in(next(image for image in macho.read_file(path) if image.processor == processor))
    except macho.MachOError as error:
        raise ExecutionError(f"{path.parent}/{error}") from None
    except (StopIteration, AttributeError, KeyError, TypeError, struct.error):
        raise ExecutionError(f"{path} has no program for {processor}, or not all its tables") from None


def program_in(image):
    """Raises whatever a missing part of the slice leads to."""
    base = image.segment("__TEXT").address
    sections = {section.name: section for section in image.sections}
    code, stubs = sections["__text"], sections["__stubs"]
    # Which symbol each stub is for stands in a table of its own, by the symbols' numbers.
    indirect = struct.unpack_from("<I", image.data, image.command(macho.LC_DYSYMTAB) + 56)[0]
    symbols, _, names = struct.unpack_from("<3I", image.data, image.command(macho.LC_SYMTAB) + 8)
    imports = {}
    for number in range(stubs.size // stubs.stub_size):
        symbol = struct.unpack_from("<I", image.data, indirect + 4 * (stubs.first_stub + number))[0]
        name = struct.unpack_from("<I", image.data, symbols + 16 * symbol)[0]
        imports[stubs.address - base + number * stubs.stub_size] = macho.text_at(image.data, names + name)[1:]
    return Program(range(code.address - base, code.address - base + code.size), imports)


def one_instruction_at_a_time(emulator):
    """The emulator's option for a log that has every instruction."""
    known = subprocess.run([emulator, "-h"], capture_output=True, text=True, check=False).stdout
    return "-one-insn-per-tb" if "one-insn-per-tb" in known else "-singlestep"


def executed(processor, *words, folder):
    """The instructions that the program executes while the command is run with these words, in their order."""
    emulator = EMULATORS[processor]
    if shutil.which(emulator[0]) is None:
        raise ExecutionError(f"{emulator[0]} is missing; it is in the package qemu-user")
    must_exist(COMMANDS[processor])
    with tempfile.TemporaryDirectory() as work:
        log = Path(work) / "log"
        ended = subprocess.run([*emulator, one_instruction_at_a_time(emulator[0]), "-d", "exec,nochain", "-D", log,
                                "-dfilter", f"{PLACE:#x}+0x1000000", COMMANDS[processor], *words],
                               cwd=folder, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        if ended.returncode:
            said = ended.stderr.decode(errors="replace").splitlines() or [f"status {ended.returncode}"]
            raise ExecutionError(f"{COMMANDS[processor].name} fails: {said[-1]}")
        instructions = [int(address, 16) - PLACE for address in LOGGED.findall(log.read_text())]
    if not instructions:
        raise ExecutionError(f"nothing of the program was executed at {PLACE:#x}")
    return instructions


def tell(name, main):
    """Runs a tool's `main` with one sentence, and no status 0, for whatever goes wrong."""
    if sys.argv[1:]:
        print(f"{name}: takes no arguments, not {sys.argv[1]}", file=sys.stderr)
        sys.exit(2)
    try:
        main()
    except (ExecutionError, OSError) as error:
        sys.exit(f"{name}: {error}")
