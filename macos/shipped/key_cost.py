"""Counts what one key-down costs in the shipped program: calls of the platform, and instructions of its own.

Two sessions that differ by one key-down are played one instruction at a time; what the longer one does more is the
key's. Nothing is timed, so the numbers are the same on every run.
"""
import tempfile
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

from macos.shipped import execution

# What is done before the key, and the key.
SITUATIONS = {
    "letter": ("launch", "a"),
    "shortcut": ("launch", "ctrl+c"),
    "exempt application": ("app Exempt com.example.exempt\nfront Exempt", "ctrl+c"),
    "Finder": ("front Finder", "a"),
    "nobody in front": ("front none", "a"),
    "disabled": ('menu "Disable Tarnwick"', "a"),
}
DEFAULTS = ('<plist version="1.0"><dict><key>exemptBundleIDs</key>'
            "<array><string>com.example.exempt</string></array></dict></plist>")
STEADY = 3  # key-downs after which nothing is done for the first time


@dataclass
class Cost:
    calls: list  # names of the platform's functions, in their order
    instructions: int  # the program's own, with those that lead to its calls


def cost(processor, situation):
    """What a key-down costs once the program has seen some."""
    before, key = SITUATIONS[situation]
    with tempfile.TemporaryDirectory() as work:
        folder = Path(work)
        (folder / "defaults.plist").write_text(DEFAULTS)
        runs = []
        for count in (STEADY, STEADY + 1):
            (folder / "session").write_text("\n".join([before, *[f"down {key}"] * count, ""]))
            runs.append(execution.executed(processor, "--defaults", "defaults.plist", "session", folder=folder))
    without, with_key = runs
    start = next((place for place, pair in enumerate(zip(without, with_key)) if pair[0] != pair[1]), len(without))
    key = with_key[start:start + len(with_key) - len(without)]
    if with_key != without[:start] + key + without[start:]:
        raise execution.ExecutionError(f"{situation}: the program does something else each time")
    imports = execution.program(processor).imports
    return Cost([imports[place] for place in key if place in imports], len(key))


def main():
    """Prints a row for each situation."""
    print(f"{'one key-down':20}{'calls':>8}{'x86-64':>10}{'arm64':>10}   the program's own instructions")
    for situation in SITUATIONS:
        costs = [cost(processor, situation) for processor in ("x86_64", "arm64")]
        print(f"{situation:20}{len(costs[0].calls):8}{costs[0].instructions:10}{costs[1].instructions:10}")
        for name, count in Counter(costs[0].calls).items():
            print(f"{count:28}  {name}")


if __name__ == "__main__":
    execution.tell("macos.shipped.key_cost", main)
