"""What one key costs in the program that is shipped: calls of the platform, exactly and in their order, and at most so
many instructions. Whatever is held here, the keyboard waits for it at every key."""
import shutil
import subprocess
import unittest
from unittest import mock

import fixture
from macos.shipped import execution, key_cost

MESSAGE = "objc_msgSend"
FRONT = [MESSAGE, MESSAGE]  # the application in front, and its identifier
IS_FINDER = [*FRONT, "CFEqual"]
READ = ["objc_autoreleasePoolPush", "CGEventGetFlags", "CGEventGetIntegerValueField"]
OWN_OR_EXEMPT = [*FRONT, MESSAGE, "CFEqual", "CFHash"]  # the program's own identifier, and the look-up in the list
FOCUS = ["AXUIElementCreateSystemWide", "AXUIElementCopyAttributeValue", "CFGetTypeID", "AXUIElementGetTypeID",
         "AXUIElementCopyAttributeValue", MESSAGE, "CFEqual", "CFEqual", "CFEqual", "CFRelease", "CFRelease", "CFRelease"]
END = ["objc_autoreleasePoolPop"]

# The Finder's two rules ask for themselves who is in front. Where nobody is, there is no identifier to ask for.
# At most so many instructions on x86-64 and on arm64, and exactly these calls.
COSTS = {
    "letter": (350, 310, [*READ, *OWN_OR_EXEMPT, *IS_FINDER, *IS_FINDER, *END]),
    "shortcut": (370, 335, [*READ, *OWN_OR_EXEMPT, *IS_FINDER, *IS_FINDER, "CGEventSetFlags", *END]),
    "exempt application": (210, 190, [*READ, *OWN_OR_EXEMPT, "CFEqual", *END]),
    "Finder": (460, 435, [*READ, *OWN_OR_EXEMPT, *IS_FINDER, *FOCUS, *IS_FINDER, *END]),
    "nobody in front": (240, 195, [*READ, MESSAGE, MESSAGE, MESSAGE, *END]),
    "disabled": (60, 55, [READ[0], *END]),
}


class KeyCost(unittest.TestCase):
    def test_costs(self):
        for situation, (*limits, calls) in COSTS.items():
            for processor, most in zip(("x86_64", "arm64"), limits):
                with self.subTest(situation=situation, processor=processor):
                    cost = key_cost.cost(processor, situation)
                    self.assertEqual(cost.calls, calls)
                    self.assertLessEqual(cost.instructions, most)


class Sentences(unittest.TestCase):
    def test_programs_that_cannot_be_measured(self):
        folder = fixture.folder(self.addCleanup)
        program = folder / "Tarnwick.app" / "Contents" / "MacOS" / "Tarnwick"
        program.parent.mkdir(parents=True)
        command = shutil.copy(execution.COMMANDS["x86_64"], folder / "tarnwick-shipped")
        (folder / "session").write_text("launch\n")
        with mock.patch.multiple(execution, BUILD=folder, COMMANDS={"x86_64": command}):
            for content, of_slice, of_command in (
                    (b"some text", "Tarnwick: not a 64-bit Mach-O file", "Tarnwick is not a universal program"),
                    (bytes.fromhex("cafebabe00000000"), "has no program for arm64", "has no slice for this processor")):
                program.write_bytes(content)
                with self.assertRaisesRegex(execution.ExecutionError, of_slice):
                    execution.program.__wrapped__("arm64")
                with self.assertRaisesRegex(execution.ExecutionError, f"tarnwick-shipped fails: .*{of_command}$"):
                    execution.executed("x86_64", "session", folder=folder)

    def test_words_that_no_tool_knows(self):
        for tool in ("shipped.key_cost", "shipped.coverage", "interface.listing"):
            ended = subprocess.run(["python3", "-B", "-m", f"macos.{tool}", "word"], cwd=fixture.ROOT, capture_output=True,
                                   text=True, check=False)
            self.assertRegex(ended.stderr, rf"\Amacos.{tool}: [^\n]*\n\Z")
            self.assertEqual(ended.returncode, 2)
