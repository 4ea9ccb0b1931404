"""What one key costs in the program that is shipped: calls of the platform, exactly and in their order, and at most so
many instructions. Whatever is held here, the keyboard waits for it at every key."""
import unittest

from macos.shipped import key_cost

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
