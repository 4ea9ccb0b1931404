"""Tells how much of the shipped arm64 program the sessions reach: the share of its instructions that are executed."""
import shutil
import tempfile
from pathlib import Path

from macos.shipped import execution, sessions

INSTRUCTION = 4  # bytes, each of them on arm64


def main():
    """A row for each session, and all together."""
    code = execution.program("arm64").code
    total, reached = len(code) // INSTRUCTION, set()
    for session in sessions.all_sessions():
        with tempfile.TemporaryDirectory() as work:
            folder = shutil.copytree(session.folder, Path(work) / "sessions")
            own = {place for place in execution.executed("arm64", *session.words, folder=folder) if place in code}
        print(f"{session.name:24}{len(own):8}{len(own - reached):8} of them for the first time")
        reached |= own
    print(f"{'together':24}{len(reached):8} of {total} instructions: {100 * len(reached) / total:.1f} %")


if __name__ == "__main__":
    execution.tell("macos.shipped.coverage", main)
