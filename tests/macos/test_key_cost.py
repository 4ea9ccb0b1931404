"""What one key costs in the program that is shipped. Counts do not vary: the calls are held exactly, the instructions
by a limit, since compilers differ a little."""
import sys
import unittest
from collections import Counter

import fixture

sys.path.insert(0, str(fixture.ROOT / "macos" / "shipped"))

import key_cost  # noqa: E402
