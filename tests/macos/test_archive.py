"""The archive depends on the bundle's content alone, and gives it back as it was."""
import os
import shutil
import subprocess
import time
import unittest
import zipfile

import fixture
from macos import archive

PROGRAM = bytes.fromhex("cffaedfe") + b" is how a program begins"


class Archive(unittest.TestCase):
    def setUp(self):
        self.folder = fixture.folder(self.addCleanup)

    def fresh(self):
        """A bundle of the test's folder itself, instead of one that was changed."""
        shutil.rmtree(self.folder / "Tarnwick.app", ignore_errors=True)
        return fixture.make_bundle(self.folder, PROGRAM)

    def test_unpacks_as_it_was(self):
        usual = os.umask(0)
        self.addCleanup(os.umask, usual)
        for moment, year in ((fixture.MOMENT, 2023), (0, 1980)):
            os.umask(0o077)  # who builds may have any; the archive does not go by it
            bundle, packed = self.fresh(), self.folder / f"{year}.zip"
            fixture.add_framework(bundle, PROGRAM)
            archive.normalise(bundle, moment)
            archive.write(bundle, packed)
            os.umask(usual)
            self.assertEqual(list(archive.compare(bundle, packed)), [])
            target = self.folder / str(year)
            subprocess.run(["unzip", "-q", str(packed), "-d", str(target)], env={**os.environ, "TZ": "UTC"}, check=True)
            contents = target / "Tarnwick.app" / "Contents"
            modes = {name: (contents / name).stat().st_mode & 0o777
                     for name in ("MacOS/Tarnwick", "Info.plist", "Frameworks")}
            self.assertEqual(modes, {"MacOS/Tarnwick": 0o755, "Info.plist": 0o644, "Frameworks": 0o755})
            self.assertEqual(time.gmtime((contents / "Info.plist").stat().st_mtime).tm_year, year)
            framework = contents / "Frameworks" / "Updater.framework"
            self.assertEqual(os.readlink(framework / "Updater"), "Versions/Current/Updater")
            self.assertEqual((framework / "Updater").read_bytes(), PROGRAM)

    def test_other_archives(self):
        """An archive that holds anything else than the bundle is told."""
        for commands, sentence in fixture.rows("packed.txt"):
            changed = self.fresh()
            fixture.change(changed / "Contents", commands)
            archive.write(changed, self.folder / "Tarnwick.zip")
            found = list(archive.compare(self.fresh(), self.folder / "Tarnwick.zip"))
            self.assertEqual(len(found), 1, (commands, found))
            self.assertRegex(found[0], f"^Tarnwick.zip .*{sentence}")

    def test_more_than_the_files_or_no_archive_at_all(self):
        bundle, packed = self.fresh(), self.folder / "Tarnwick.zip"
        archive.write(bundle, packed)
        whole = packed.read_bytes()
        hidden = whole[:whole.index(b"PK\3\4", 4)]
        with zipfile.ZipFile(packed, "a") as package:
            package.comment = b"comment"
        for content in (b"#!/bin/sh\n" + whole, whole + b"more", hidden + whole, packed.read_bytes()):
            packed.write_bytes(content)
            self.assertEqual(list(archive.compare(bundle, packed)),
                             ["Tarnwick.zip holds something before, between or behind its files"])
        for content in (b"", whole[:len(whole) // 2], bytes(1000)):
            packed.write_bytes(content)
            with self.assertRaisesRegex(archive.ArchiveError, "^Tarnwick.zip cannot be unpacked: "):
                list(archive.compare(bundle, packed))
        zipfile.ZipFile(packed, "w").close()
        self.assertIn("Tarnwick.zip lacks Tarnwick.app/", list(archive.compare(bundle, packed)))
