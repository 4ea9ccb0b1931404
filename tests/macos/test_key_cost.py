"""What one key costs in the program that is shipped. Counts do not vary: the calls are held exactly, the instructions
by a limit, since compilers differ a little."""
import unittest
from collections import Counter

from macos.shipped import key_cost
