"""Builds the Mac application: build/macos/Tarnwick.app and build/macos/Tarnwick.zip.

On a Mac with Apple's compiler, headers and codesign; elsewhere with Debian's clang 19, open headers and the link stubs
and the signing of this folder. The same source gives the same bytes.
"""
import argparse
import os
import platform
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from macos import archive, check, codesign, information, macho, sysroot, verify

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent

PROCESSORS = ("arm64", "x86_64")
TOOLS = {"cmake": "cmake", "ninja": "ninja-build", "clang++-19": "clang-19", "ld64.lld-19": "lld-19",
         "llvm-ar-19": "llvm-19"}


class BuildError(Exception):
    """The application cannot be built; the text is for the person who asked for it."""


class WrongArgument(BuildError):
    """What was asked for cannot be."""


class Words(argparse.ArgumentParser):
    """Says in one sentence what is wrong with the words of the command."""

    def error(self, message):
        raise WrongArgument(f"{message}; --help tells what there is")


def given(text):
    """An option's argument. Empty it is mostly somebody's variable that is not set."""
    if not text:
        raise argparse.ArgumentTypeError("nothing is given")
    return text


def given_path(text):
    return Path(given(text))


def run(*command):
    """Runs a tool and shows what it says only when it fails."""
    result = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            text=True, check=False)
    if result.returncode:
        print(result.stdout, file=sys.stderr)
        if "undefined symbol" in result.stdout:
            raise BuildError("the program uses something that macos/imports.txt does not list: see above; look up its "
                             "library and its first macOS, and add it there")
        raise BuildError(f"{Path(command[0]).name} failed")


def cross_options(output):
    """What CMake needs to build for a Mac elsewhere."""
    missing = sorted({package for tool, package in TOOLS.items() if shutil.which(tool) is None})
    if missing:
        raise BuildError(f"missing: apt-get install --no-install-recommends {' '.join(missing)}")
    caches = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache")
    headers = sysroot.fetch(caches / "tarnwick")
    sysroot.write_stubs(output / "stubs")
    return ["-G", "Ninja", f"-DCMAKE_TOOLCHAIN_FILE={HERE / 'linux.cmake'}", f"-DTARNWICK_HEADERS={headers}",
            f"-DTARNWICK_STUBS={output / 'stubs'}"]


def compile_all(output, options):
    """Builds the program for each processor; the folders they were built in."""
    folders = []
    for processor in PROCESSORS:
        folder = output / processor
        shutil.rmtree(folder / "Tarnwick.app", ignore_errors=True)  # nothing that an earlier build left is shipped
        run("cmake", "-S", ROOT, "-B", folder, "-DCMAKE_BUILD_TYPE=Release", f"-DCMAKE_OSX_ARCHITECTURES={processor}",
            f"-DCMAKE_OSX_DEPLOYMENT_TARGET={sysroot.dotted(sysroot.OLDEST_SYSTEM)}", *options)
        run("cmake", "--build", folder, "--parallel", os.cpu_count() or 1)
        folders.append(folder)
    return folders


def assemble(bundle, folders, frameworks):
    """The bundle with the program of all processors in it, not yet signed."""
    shutil.rmtree(bundle, ignore_errors=True)
    shutil.copytree(folders[0] / "Tarnwick.app", bundle)
    program = bundle / "Contents" / "MacOS" / "Tarnwick"
    program.parent.mkdir()
    program.write_bytes(macho.join([(folder / "Tarnwick").read_bytes() for folder in folders]))
    for framework in frameworks:
        shutil.copytree(framework, bundle / "Contents" / "Frameworks" / framework.name, symlinks=True)


def sign_with_apple(bundle, identity):
    """Signs what is nested first.

    An identity's team may load what it signed itself; an ad-hoc program needs a right to load an ad-hoc framework.
    """
    options = ["--force", "--options", "runtime", "--sign", identity or "-"]
    if identity:
        options.append("--timestamp")
    nested = codesign.nested_deepest_first(bundle)
    for code in nested:
        run("codesign", "--preserve-metadata=entitlements", *options, code)
    with tempfile.NamedTemporaryFile(suffix=".plist") as rights:
        if not identity and any(code.suffix == ".framework" for code in nested):
            rights.write(codesign.entitlements())
            rights.flush()
            options += ["--entitlements", rights.name]
        run("codesign", *options, bundle)
    run("codesign", "--verify", "--deep", "--strict", bundle)


def moment_of_source():
    """When the source was committed, so that its files are newer than those of an earlier version and the same wherever
    it is built. SOURCE_DATE_EPOCH says it where there is no repository."""
    told = os.environ.get("SOURCE_DATE_EPOCH")
    if told is None:
        asked = subprocess.run(["git", "log", "-1", "--format=%ct"], cwd=ROOT, capture_output=True, text=True, check=False)
        told = asked.stdout.strip() or str(archive.EARLIEST)
    if not re.fullmatch("[0-9]{1,10}", told) or int(told) > archive.LATEST:
        raise WrongArgument(f"SOURCE_DATE_EPOCH is {told!r}, not a number of seconds since 1970 that a zip can tell")
    return int(told)


def build(output, identity, frameworks):
    """Everything, from the sources to the checked archive."""
    on_a_mac = platform.system() == "Darwin"
    if identity and not on_a_mac:
        raise WrongArgument("an identity can sign only on a Mac; without one the signature is ad hoc")
    missing = information.placeholders(information.read(sysroot.INFORMATION))
    if identity and missing:
        raise BuildError(f"what is signed for others needs its addresses: fill in {' and '.join(missing)} in "
                         f"bundle/{sysroot.INFORMATION.name}")
    for framework in frameworks:
        if not (framework / "Versions" / "Current").exists():
            raise WrongArgument(f"{framework} is not a framework")
    moment = moment_of_source()
    try:
        output.mkdir(parents=True, exist_ok=True)
    except OSError as error:
        raise WrongArgument(f"{output} cannot be made: {error.strerror}") from None
    bundle, zipped = output / "Tarnwick.app", output / "Tarnwick.zip"
    assemble(bundle, compile_all(output, [] if on_a_mac else cross_options(output)), frameworks)
    if on_a_mac:
        sign_with_apple(bundle, identity)
    else:
        codesign.sign(bundle)
    archive.normalise(bundle, moment)
    if not on_a_mac:
        for line in verify.verify_application(bundle)[1]:
            print(line)
    archive.write(bundle, zipped)
    problems, lines = check.check_bundle(bundle, zipped, any_symbol=on_a_mac)
    for line in lines:
        print(line)
    if problems:
        raise BuildError("the application is not fit for a Mac:\n  " + "\n  ".join(problems))


def main():
    """Status 0 when the application is there; with a sentence 2 for what cannot be asked for, 1 otherwise."""
    parser = Words(prog="./dev app", description="Builds Tarnwick.app and Tarnwick.zip.")
    parser.add_argument("--output", type=given_path, default=ROOT / "build" / "macos", help="default: build/macos")
    parser.add_argument("--identity", type=given, help="Developer ID to sign with, on a Mac; default: ad hoc")
    parser.add_argument("--framework", type=given_path, action="append", default=[],
                        help="a framework to put into the bundle")
    try:
        options = parser.parse_args()
        build(options.output.resolve(), options.identity, options.framework)
    except (BuildError, sysroot.SysrootError, codesign.SigningError, verify.VerificationError, archive.ArchiveError,
            information.InformationError, macho.MachOError) as error:
        print(f"./dev app: {error}", file=sys.stderr)
        return 2 if isinstance(error, WrongArgument) else 1
    except OSError as error:
        print(f"./dev app: {error.filename or 'the system'}: {error.strerror}", file=sys.stderr)
        return 1
    print(f"{options.output / 'Tarnwick.app'} and {options.output / 'Tarnwick.zip'} are ready")
    return 0


if __name__ == "__main__":
    sys.exit(main())
