"""The sessions that the project keeps, and the words with which the command plays each."""
import re
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


@dataclass
class Session:
    folder: Path
    words: list

    @property
    def name(self):
        return self.words[-1]


def all_sessions():
    """Those with an expected trace, then those that draw the pictures."""
    traced = ROOT / "tests" / "sessions"
    for session in sorted(traced.glob("*.txt")):
        options = re.match("# options: (.*)|", session.read_text())[1] or ""
        yield Session(traced, ["--trace", *options.split(), session.name])
    pictures = ROOT / "docs" / "pictures"
    for session in sorted(pictures.glob("*.session")):
        yield Session(pictures, ["--trace", "--defaults", session.with_suffix(".plist").name, session.name])
