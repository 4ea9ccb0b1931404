"""Damages a signed application, its archive and its dictionary at random: whatever the bytes, the answer is a sentence.

Every byte of the application is signed or can have but one value, so the verifier refuses every damage of it.
"""
import contextlib
import io
import plistlib
import random
import shutil
import unittest

import fixture
from macos import archive, check, verify

SEED = 2026
SENTENCE = r"(verify|check): [^\n]*(Tarnwick|Updater|Helper|Info.plist|CodeResources|MenuBarTemplate|AppIcon|Text)[^\n]*\n"
# What a property list may be, and should not.
VALUES = (None, 0, -1, 2**63, True, 1.5, b"", b"data", "", "../../x", "REPLACE_WITH", "https://", [], [1], {}, {"a": 1})


def damaged(data, chance):
    """The bytes with one to three changes."""
    data = bytearray(data)
    for _ in range(chance.randint(1, 3)):
        place, length = chance.randrange(len(data) + 1), chance.choice((1, 1, 1, 4, 64))
        kind = chance.choice(("flip", "flip", "fill", "remove", "insert", "end"))
        if kind == "flip" and place < len(data):
            data[place] ^= 1 << chance.randrange(8)
        elif kind == "fill":
            data[place:place + length] = bytes([chance.choice((0, 1, 0x7F, 0xFF))]) * len(data[place:place + length])
        elif kind == "remove":
            del data[place:place + length]
        elif kind == "insert":
            data[place:place] = chance.randbytes(length)
        elif kind == "end":
            del data[place:]
    return bytes(data)


class Damage(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        cls.bundle = fixture.signed_bundle(cls.folder)
        cls.archive = cls.folder / "Tarnwick.zip"
        archive.write(cls.bundle, cls.archive)

    def setUp(self):
        self.chance = random.Random(SEED)

    def assert_sentences(self, path, content, *asked, allowed=(0, 1)):
        """What each tool answers while a file has other content: a status, and with 1 sentences; never an exception."""
        before = path.read_bytes()
        path.write_bytes(content)
        try:
            for tool, *arguments in asked:
                said = io.StringIO()
                with contextlib.redirect_stderr(said), contextlib.redirect_stdout(io.StringIO()):
                    status = tool.main([str(argument) for argument in arguments])
                self.assertIn(status, allowed)
                self.assertRegex(said.getvalue(), f"^({SENTENCE})+$" if status else "^$")
        finally:
            path.write_bytes(before)

    def test_application(self):
        files = [path for path in archive.entries(self.bundle) if path.is_file() and not path.is_symlink()]
        for number in range(2000):
            path = self.chance.choice(files)
            content = damaged(path.read_bytes(), self.chance)
            if content == path.read_bytes():
                continue
            with self.subTest(number, path=path.name):
                self.assert_sentences(path, content, (verify, self.bundle), allowed=(1,))
                if number % 10 == 0:
                    self.assert_sentences(path, content, (check, self.bundle, self.archive))

    def test_signatures(self):
        """Every single byte of every signature counts."""
        program = self.bundle / "Contents" / "MacOS" / "Tarnwick"
        intact = program.read_bytes()
        for part in verify.macho.slices(intact):
            offset, size = verify.macho.read_image(part).signature()
            start = intact.index(part) + offset
            for place in range(start, start + size):
                content = bytearray(intact)
                content[place] ^= 1 << self.chance.randrange(8)
                with self.subTest(place - start):
                    self.assert_sentences(program, bytes(content), (verify, self.bundle), allowed=(1,))

    def test_archive(self):
        intact = self.archive.read_bytes()
        for number in range(1000):
            with self.subTest(number):
                self.assert_sentences(self.archive, damaged(intact, self.chance), (check, self.bundle, self.archive))

    def test_dictionary(self):
        """Damaged as bytes, in both spellings, and with values of other kinds; signed anew, so that it is read."""
        bundle = self.folder / "other" / "Tarnwick.app"
        shutil.copytree(self.bundle, bundle, symlinks=True)
        information = bundle / "Contents" / "Info.plist"
        good = plistlib.loads(information.read_bytes())
        spellings = [plistlib.dumps(good), plistlib.dumps(good, fmt=plistlib.FMT_BINARY)]
        contents = [damaged(self.chance.choice(spellings), self.chance) for _ in range(1000)]
        contents += [plistlib.dumps({**good, name: value}) for name in good for value in VALUES if value is not None]
        contents += [plistlib.dumps({key: good[key] for key in good if key != name}) for name in good]
        contents += [plistlib.dumps([good]), plistlib.dumps("text"), b"", b"bplist00"]
        for number, content in enumerate(contents):
            with self.subTest(number):
                self.assert_sentences(information, content, (verify, bundle), (check, bundle, self.archive))
