"""Holds everything that the program asks of macOS, and what the stand-in desktop offers in its place, against facts.

Run from anywhere; it exits 0, or prints a sentence for each thing that the platform has otherwise and exits 1.
"""
import argparse
import os
import subprocess
import sys
import tempfile
from pathlib import Path

from macos import sysroot
from macos.interface import abi, declarations, messages, program
from macos.interface.facts import Facts

ROOT = Path(__file__).resolve().parents[2]

STAND_IN = "stand_in_methods"


STAND_IN_AS = "arm64"  # the stand-in's types are those of this processor


class Check:
    """All sentences, each with what it is about when that is not everything."""

    def __init__(self, root, work, headers):
        self.root, self.work = root, work
        self.programs = program.ask_all(root, work, headers, abi.PROCESSORS)
        self.libraries = sysroot.read_libraries(root / "macos" / "imports.txt")
        self.found = {}
        self.declared = set()

    def note(self, about, sentences):
        for sentence in sentences:
            self.found.setdefault(sentence, set()).add(about)

    def check_program(self):
        """What the program asks of each processor's platform."""
        for asked, compiler, sources in self.programs:
            facts = Facts()
            self.note(asked.processor, messages.Messages(facts, asked).check())
            self.check_declarations(asked.processor,
                                    declarations.Declarations(facts, asked.processor, compiler, sources))
            self.note(asked.processor, declarations.check_imports(facts, self.libraries, asked))
            self.note(asked.processor, declarations.check_class_libraries(facts, self.libraries, asked))

    def check_declarations(self, about, declared):
        """Functions, variables and constants."""
        self.note(about, declared.check())
        self.declared |= declared.checked

    def check_stand_in(self, tool):
        """The stand-in's methods, as the tool lists them, the declarations that only its build sees, and its own."""
        listed = subprocess.run([str(tool)], capture_output=True, text=True, check=True).stdout.splitlines()
        self.note("stand-in", messages.StandIn(Facts(), self.programs[0][0], listed).check())
        compiler = program.Compiler(self.root, self.work / "stand-in")
        platform = declarations.Declarations(Facts(), STAND_IN_AS, compiler, compiler.preprocessed())
        self.check_declarations("stand-in", platform)
        own = compiler.preprocessed([program.STAND_IN_FOLDER])
        self.check_declarations("stand-in", declarations.StandInDeclarations(platform, own))
        return len(listed)

    def sentences(self):
        """Each once."""
        for sentence, about in self.found.items():
            alone = len(about) == 1 and "stand-in" not in sentence
            yield f"{sentence} ({min(about)})" if alone else sentence

    def summary(self):
        """How much was looked at."""
        asked = self.programs[0][0]
        return (f"{len(asked.messages)} messages, {len(asked.methods)} methods of run-time classes, "
                f"{len(self.declared)} declarations, {len(asked.imports)} imports")


def check(root, tool):
    """Sentences, and how much was looked at."""
    caches = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache")
    with tempfile.TemporaryDirectory() as work:
        checking = Check(root, Path(work), sysroot.fetch(caches / "tarnwick"))
        checking.check_program()
        stand_in = f", {checking.check_stand_in(tool)} methods of the stand-in" if tool else ""
        return list(checking.sentences()), checking.summary() + stand_in


def main():
    """Status 0 when all agrees, 1 otherwise."""
    parser = argparse.ArgumentParser(prog="macos/interface/check", description=__doc__)
    parser.add_argument("--build", type=Path, default=ROOT / "build", help="where the stand-in is; default: build")
    options = parser.parse_args()
    tool = options.build / STAND_IN
    if not tool.exists():
        print(f"macos/interface/check: {tool} is missing; build first: ./dev build", file=sys.stderr)
        return 1
    try:
        sentences, summary = check(ROOT, tool)
    except (program.ProgramError, sysroot.SysrootError) as error:
        print(f"macos/interface/check: {error}", file=sys.stderr)
        return 1
    for sentence in sentences:
        print(f"macos/interface/check: {sentence}", file=sys.stderr)
    print(f"{summary}: {f'mistakes: {len(sentences)}' if sentences else 'as the platform has them'}")
    return 1 if sentences else 0


if __name__ == "__main__":
    sys.exit(main())
