"""Small Mac programs and bundles, compiled here, for the tests of the scripts in macos/ to examine and to damage."""
import os
import plistlib
import struct
import subprocess
import tempfile
from pathlib import Path

from macos import archive, codesign, macho, sysroot

ROOT = Path(__file__).resolve().parents[2]
OLDEST = sysroot.dotted(sysroot.OLDEST_SYSTEM)
MOMENT = 1_700_000_000
PROCESSORS = ("arm64", "x86_64")
SOURCE = """
extern void *objc_getClass(const char *);
extern const void *kCFRunLoopCommonModes;
int main(void) { return objc_getClass("NSObject") == kCFRunLoopCommonModes; }
"""
LINK_OPTIONS = ["-fuse-ld=lld", "-nostdlib", "-Wl,-adhoc_codesign", "-Wl,-dead_strip", "-Wl,-S", "-Wl,-x"]
PUT = 'put() { printf "\\\\$3" | dd of="$1" bs=1 seek=$(($2)) conv=notrunc 2>/dev/null; }'
PROGRAM_OPTIONS = ["-Wl,-exported_symbol,__mh_execute_header"]


def folder(add_cleanup):
    """A folder of a test's or a class's own, gone with it."""
    work = tempfile.TemporaryDirectory()
    add_cleanup(work.cleanup)
    return Path(work.name)


def rows(name):
    """Pairs of a file in rows/: what is made wrong, and behind an arrow the pattern of the sentence that must answer."""
    blocks = (ROOT / "tests" / "macos" / "rows" / name).read_text().rstrip("\n").split("\n\n")
    return [tuple(block.split("\n-> ")) for block in blocks[1:]]  # without the heading


def all_libraries():
    """The words that link every library of the table."""
    return [f"-Wl,-framework,{library.name}" if library.is_framework else f"-l{library.name}"
            for library in sysroot.read_libraries()]


def link(folder, processor, source=SOURCE, options=(), libraries=None):
    """Compiles and links one slice against the stubs. What the tools say is in the exception when they fail."""
    stubs = folder / "stubs"
    if not stubs.exists():
        sysroot.write_stubs(stubs)
    (folder / "program.c").write_text(source)
    target = folder / f"program-{processor}"
    command = ["clang-19", "-target", f"{processor}-apple-macos{OLDEST}", "-Os", "-g0", "-funwind-tables",
               *LINK_OPTIONS, *options, f"-F{stubs}", f"-L{stubs}", *(libraries or all_libraries()),
               "program.c", "-o", target.name]
    subprocess.run(command, check=True, capture_output=True, text=True, cwd=folder)
    return target.read_bytes()


def universal(parts):
    """A universal file of slices that may be damaged, which no tool would join."""
    alignment = 14
    header, body = struct.pack(">2I", macho.FAT_MAGIC, len(parts)), b""
    for part in parts:
        body += bytes(-len(body) % (1 << alignment))
        processor = struct.unpack_from("<2I", part, 4)
        header += struct.pack(">5I", *processor, (1 << alignment) + len(body), len(part), alignment)
        body += part
    return header.ljust(1 << alignment, b"\0") + body


def program(folder, **changes):
    """A universal program."""
    return macho.join([link(folder, processor, **{"options": PROGRAM_OPTIONS, **changes}) for processor in PROCESSORS])


def library(folder):
    """A universal library, such as an update framework holds."""
    return macho.join([link(folder, processor, source="int answer(void) { return 42; }\n", options=["-dynamiclib"],
                            libraries=["-lSystem"]) for processor in PROCESSORS])


def make_bundle(place, code):
    """An application with this program."""
    contents = place / "Tarnwick.app" / "Contents"
    for name in ("MacOS", "Resources/en.lproj", "Frameworks"):
        (contents / name).mkdir(parents=True)
    (contents / "Info.plist").write_bytes(plistlib.dumps({
        "CFBundleIdentifier": "app.tarnwick.Tarnwick", "CFBundleExecutable": "Tarnwick", "CFBundlePackageType": "APPL",
        "CFBundleShortVersionString": "1.0.0", "CFBundleVersion": "1.0.0", "LSMinimumSystemVersion": OLDEST,
        "LSUIElement": True, "SUFeedURL": "REPLACE_WITH_FEED_URL", "SUPublicEDKey": "REPLACE_WITH_PUBLIC_KEY"}))
    (contents / "Resources" / "AppIcon.icns").write_bytes(b"icon")
    (contents / "Resources" / "MenuBarTemplate.png").write_bytes(b"picture")
    (contents / "Resources" / "en.lproj" / "Text.strings").write_bytes(b"text")
    (contents / "MacOS" / "Tarnwick").write_bytes(code)
    archive.normalise(contents.parent, MOMENT)
    return contents.parent


def signed_bundle(folder):
    """A signed application with a framework."""
    bundle = make_bundle(folder, program(folder))
    add_framework(bundle, library(folder))
    codesign.sign(bundle)
    archive.normalise(bundle, MOMENT)
    return bundle


def change(folder, commands):
    """Lets the shell change what is in a folder. Its own word `put FILE PLACE OCTAL` sets one byte."""
    subprocess.run(["sh", "-ec", f"{PUT}\n{commands}"], cwd=folder, check=True)


def add_framework(bundle, code):
    """A framework with a helper program beside its library, laid out as frameworks are."""
    framework = bundle / "Contents" / "Frameworks" / "Updater.framework"
    version = framework / "Versions" / "B"
    (version / "Resources").mkdir(parents=True)
    (version / "Resources" / "Info.plist").write_bytes(plistlib.dumps({
        "CFBundleIdentifier": "org.example.Updater", "CFBundleExecutable": "Updater"}))
    for name in ("Updater", "Helper"):
        (version / name).write_bytes(code)
    os.symlink("B", framework / "Versions" / "Current")
    os.symlink("Versions/Current/Updater", framework / "Updater")
    archive.normalise(bundle, MOMENT)
    return framework
