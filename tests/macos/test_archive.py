"""The archive depends on the bundle's content alone, and gives it back as it was."""
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import fixture
from macos import archive


class Archive(unittest.TestCase):
    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.folder = Path(work.name)

    def packed(self, name, umask, age):
        """A bundle made under another mask and at another time, packed."""
        before = os.umask(umask)
        self.addCleanup(os.umask, before)
        bundle = fixture.make_bundle(self.folder / name, b"program")
        fixture.add_framework(bundle, b"library")
        for path in bundle.rglob("*"):
            os.utime(path, (age, age), follow_symlinks=False)
        archive.normalise_modes(bundle)
        archive.write(bundle, self.folder / f"{name}.zip")
        return (self.folder / f"{name}.zip").read_bytes()

    def test_same_bytes(self):
        self.assertEqual(self.packed("one", 0o022, 1_000_000_000), self.packed("two", 0o077, 1_700_000_000))

    def test_unpacks_as_it_was(self):
        self.packed("one", 0o022, 1_000_000_000)
        subprocess.run(["unzip", "-q", str(self.folder / "one.zip"), "-d", str(self.folder / "unpacked")], check=True)
        contents = self.folder / "unpacked" / "Tarnwick.app" / "Contents"
        modes = {name: (contents / name).stat().st_mode & 0o777
                 for name in ("MacOS/Tarnwick", "Info.plist", "Frameworks")}
        self.assertEqual(modes, {"MacOS/Tarnwick": 0o755, "Info.plist": 0o644, "Frameworks": 0o755})
        version = contents / "Frameworks" / "Updater.framework"
        self.assertEqual(os.readlink(version / "Updater"), "Versions/Current/Updater")
        self.assertEqual((version / "Updater").read_bytes(), b"library")
