"""Holds the finished application against what a Mac with macOS 13 would load, and prints its figures.

`python3 -m macos.check Tarnwick.app Tarnwick.zip` exits 0, or prints a sentence for each thing that is wrong and exits 1.
"""
import re
import struct
import sys
from pathlib import Path

from macos import archive, information, macho, sysroot, verify
from macos.sysroot import OLDEST_SYSTEM, dotted

PLATFORM_MACOS = 1
FLAG_TWO_LEVEL, FLAG_STACK_EXECUTION, FLAG_PIE = 0x80, 0x20000, 0x200000
WRITE_AND_EXECUTE = 0x6
INITIALISERS = {"__mod_init_func": 8, "__init_offsets": 4, "__mod_term_func": 8}  # bytes for each
LOADER = "/usr/lib/dyld"
PROGRAM_HEADER = "__mh_execute_header"
LARGEST_ARCHIVE = 300_000  # without the update framework

TEXT = re.compile(rb"[\x20-\x7e]{4,}")
ABSOLUTE_PATH = re.compile(r"(?<![\w/:.@])/[\w.+-]+/[\w.+/-]+")
SOURCE_FILE = re.compile(r"[\w./-]+\.(?:cpp|cc|hpp|o|a)\b")
USER_PATHS = ("/Applications", "/System/")  # a Mac has these, so the program may name them
STAND_IN = "N7desktop"  # how the names of the development desktop begin


def check_image(image, libraries, any_symbol):
    """Sentences for what is wrong with one processor's program."""
    if not any_symbol:
        yield from check_imports(image, libraries)
        yield from check_library_versions(image, libraries)
    yield from check_header(image)
    yield from check_segments(image)
    yield from check_unwinding(image)
    yield from check_libraries(image, libraries)
    yield from check_exports(image)
    yield from check_initialisers(image)
    yield from check_text(image)


def check_header(image):
    """A position-independent program for macOS 13."""
    if image.filetype != macho.MH_EXECUTE:
        yield "it is not a program"
    if not image.flags & FLAG_PIE:
        yield "it is not position independent"
    if not image.flags & FLAG_TWO_LEVEL:
        yield "its imports do not name their libraries (flat namespace)"
    if image.flags & FLAG_STACK_EXECUTION:
        yield "it asks for an executable stack"
    build = image.command(macho.LC_BUILD_VERSION)
    if build is None:
        yield "it does not say for which system it is"
    else:
        platform, oldest, sdk = struct.unpack_from("<3I", image.data, build + 8)
        if platform != PLATFORM_MACOS:
            yield f"it is for platform {platform}, not for macOS"
        for what, version in (("oldest system", macho.version_of(oldest)), ("SDK", macho.version_of(sdk))):
            if version != OLDEST_SYSTEM:
                yield f"its {what} is macOS {dotted(version)}, not {dotted(OLDEST_SYSTEM)}"
    if image.command(macho.LC_MAIN) is None:
        yield "it has no entry point"
    loader = image.command(macho.LC_LOAD_DYLINKER)
    if loader is None or macho.text_at(image.data, loader + 12) != LOADER:
        yield f"its loader is not {LOADER}"


def check_segments(image):
    """Nothing may be written and executed."""
    for segment in image.segments:
        if segment.protection & WRITE_AND_EXECUTE == WRITE_AND_EXECUTE:
            yield f"segment {segment.name} may be written and executed"


def check_unwinding(image):
    """An exception of the platform can pass through the program to whoever handles it."""
    if not any(section.name == "__unwind_info" for section in image.sections):
        yield "it has no unwind tables: an exception of the platform would end it"


def check_libraries(image, libraries):
    """The libraries of the table, all of them and no other."""
    expected = {library.install_name for library in libraries}
    for loaded in image.libraries:
        if loaded.install_name not in expected:
            yield f"it loads {loaded.install_name}, which macos/imports.txt does not name"
        elif loaded.command != "LC_LOAD_DYLIB":
            yield f"it loads {loaded.install_name} by {loaded.command}, not plainly"
    for name in sorted(expected - {loaded.install_name for loaded in image.libraries}):
        yield f"it does not load {name}, so classes in there would not be found"
    for path in image.run_paths:
        yield f"it looks for libraries in {path}"


def check_library_versions(image, libraries):
    """The program was linked with the libraries of the oldest system."""
    expected = {library.install_name: tuple(map(sysroot.version_of, (library.current, library.compatibility)))
                for library in libraries}
    for loaded in image.libraries:
        wanted = expected.get(loaded.install_name)
        if wanted and (padded(loaded.current), padded(loaded.compatibility)) != tuple(map(padded, wanted)):
            yield (f"it was linked with version {dotted(loaded.current)} of {loaded.install_name}, compatible with "
                   f"{dotted(loaded.compatibility)}; macos/imports.txt says {dotted(wanted[0])} and {dotted(wanted[1])}")


def padded(version):
    """A version with three parts: 228 is 228.0.0."""
    return (*version, 0, 0)[:3]


def check_imports(image, libraries):
    """Each symbol comes from the library that has it, in macOS 13."""
    table = {symbol.name: (symbol, library) for library in libraries for symbol in library.symbols
             if symbol.processor in ("", image.processor)}
    for entry in image.imports:
        if entry.symbol not in table:
            yield f"it takes {entry.symbol}, which macos/imports.txt does not list for this processor"
            continue
        symbol, library = table[entry.symbol]
        number = entry.library
        source = image.libraries[number - 1].install_name if 1 <= number <= len(image.libraries) else "no library"
        if source != library.install_name:
            yield f"it takes {symbol.name} from {source}, but {library.install_name} has it"
        if symbol.first_version > OLDEST_SYSTEM:
            yield f"it takes {symbol.name}, which begins with macOS {dotted(symbol.first_version)}"
        if entry.weak:
            yield f"it takes {symbol.name} weakly: on a system without it the program would call nothing"


def check_exports(image):
    """A program offers nothing."""
    for name in image.exports:
        if name != PROGRAM_HEADER:
            yield f"it offers {name} to others"


def count_initialisers(image):
    return sum(section.size // INITIALISERS[section.name] for section in image.sections
               if section.name in INITIALISERS)


def check_initialisers(image):
    """Nothing runs before main: not at every login, before the user has asked for anything."""
    count = count_initialisers(image)
    if count:
        yield f"it runs {count} static initialiser{'s' if count > 1 else ''} before main"


def check_text(image):
    """Nothing of the machine that built it, and nothing of the development desktop."""
    if image.debug_symbols:
        yield f"it holds {image.debug_symbols} symbols for the debugger"
    known = {LOADER, *(loaded.install_name for loaded in image.libraries), *image.run_paths}
    found = set()
    # The signature's hashes look like any text, now and then.
    end, _ = image.signature() or (len(image.data), 0)
    for match in TEXT.finditer(image.data, 0, end):
        text = match.group().decode()
        found.update(path for path in ABSOLUTE_PATH.findall(text)
                     if path not in known and not path.startswith(USER_PATHS))
        found.update(SOURCE_FILE.findall(text))
        if STAND_IN in text:
            found.add(text)
    for text in sorted(found):
        yield f"the text \"{text}\" of the machine that built it is left in it"


def check_information(bundle):
    """The information dictionary keeps its rules, and what it names is there."""
    contents = bundle / "Contents"
    has_framework = any((contents / "Frameworks").glob("*.framework"))
    yield from information.check(information.read(contents / "Info.plist"), has_framework)
    for name in information.RESOURCES:
        if not (contents / "Resources" / name).is_file():
            yield f"Resources/{name} is missing"


def check_program(path, libraries, any_symbol):
    """(sentences for what is wrong, lines with the figures) of the program."""
    images = macho.read_file(path)
    processors = ", ".join(sorted(image.processor for image in images))
    problems = []
    if processors != "arm64, x86_64":
        problems.append(f"{path.name} is for {processors}, not for arm64, x86_64")
    for image in images:
        try:
            problems += [f"{path.name} ({image.processor}): {problem}"
                         for problem in check_image(image, libraries, any_symbol)]
        except struct.error:
            problems.append(f"{path.name} ({image.processor}): a load command reaches past the end of the file")
    return problems, [figures(image) for image in images]


def check_bundle(bundle, packed, any_symbol=False):
    """(sentences for what is wrong, lines with the figures) of the application and its archive.

    Apple's own linker may take any symbol: it knows which library has it, and the compiler which system has it.
    """
    libraries = sysroot.read_libraries()
    if any_symbol:
        libraries.append(sysroot.Library("c++", "/usr/lib/libc++.1.dylib", "1", "1", []))
    verify.verify_layout(bundle)
    problems, lines = check_program(bundle / "Contents" / "MacOS" / "Tarnwick", libraries, any_symbol)
    problems += check_information(bundle)
    problems += archive.compare(bundle, packed)
    size = packed.stat().st_size
    if size > LARGEST_ARCHIVE and not any((bundle / "Contents" / "Frameworks").glob("*.framework")):
        problems.append(f"{packed.name} has {size} bytes, more than {LARGEST_ARCHIVE}")
    return problems, [*lines, f"{packed.name}: {size} bytes"]


def figures(image):
    code = sum(section.size for section in image.sections if section.name == "__text")
    return (f"{image.processor}: code {code} bytes, file {len(image.data)} bytes, "
            f"{len(image.imports)} imported symbols, {count_initialisers(image)} static initialisers")


def main(arguments):
    """Status 0 when the application is as it should be, 1 with sentences otherwise."""
    if len(arguments) != 2:
        print("usage: python3 -m macos.check BUNDLE ARCHIVE", file=sys.stderr)
        return 2
    try:
        problems, lines = check_bundle(Path(arguments[0]), Path(arguments[1]))
    except (macho.MachOError, sysroot.SysrootError, information.InformationError, archive.ArchiveError,
            verify.VerificationError, OSError) as error:
        problems, lines = [str(error)], []
    for line in lines:
        print(line)
    for problem in problems:
        print(f"check: {problem}", file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
