"""The whole way from the sources to the archive: the same bytes from two places, and clear sentences on the way."""
import io
import os
import shutil
import subprocess
import unittest
import zipfile
from pathlib import Path
from unittest import mock

import fixture
from macos import build

IDENTITY = "Developer ID Application: A (B)"
SOURCES = ("app", "remap", "settings", "platform", "bundle", "macos")


class Build(unittest.TestCase):
    """Builds the application from copies of its sources."""

    @classmethod
    def setUpClass(cls):
        folder = fixture.folder(cls.addClassCleanup)
        cls.first, cls.second = folder / "one", folder / "another-place"
        for part in SOURCES:
            shutil.copytree(fixture.ROOT / part, cls.first / part, ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copy(fixture.ROOT / "CMakeLists.txt", cls.first)
        shutil.copytree(cls.first, cls.second)

    def build(self, place, *options, moment=fixture.MOMENT):
        result = subprocess.run(["python3", "-B", "-m", "macos.build", *options], cwd=place, capture_output=True, text=True, check=False,
                                env={**os.environ, "SOURCE_DATE_EPOCH": str(moment)})
        return result.returncode, result.stdout + result.stderr

    def test_same_archive_from_two_places(self):
        for place in (self.first, self.second):
            status, said = self.build(place)
            self.assertEqual(status, 0, said)
        archives = [(place / "build" / "macos" / "Tarnwick.zip").read_bytes() for place in (self.first, self.second)]
        self.assertEqual(archives[0], archives[1])
        dates = {entry.date_time[:3] for entry in zipfile.ZipFile(io.BytesIO(archives[0])).infolist()}
        self.assertEqual(dates, {(2023, 11, 14)})

    def test_symbol_that_is_not_listed(self):
        extra = self.second / "app" / "Unlisted.cpp"
        extra.write_text('extern "C" int CGEventTapIsEnabled(void*);\n'
                         "__attribute__((used)) int asked() { return CGEventTapIsEnabled(nullptr); }\n")
        self.addCleanup(extra.unlink)
        status, said = self.build(self.second)
        self.assertEqual(status, 1)
        self.assertIn("undefined symbol: CGEventTapIsEnabled", said)
        self.assertIn("macos/imports.txt does not list", said)

    def test_what_cannot_be_asked_for(self):
        for moment, options, sentence in ((0, ["--framework", "app"], "app is not a framework"),
                                          (0, ["--output", ""], "argument --output: nothing is given"),
                                          (0, ["--output", "CMakeLists.txt"], "CMakeLists.txt cannot be made: File exists"),
                                          (0, ["--nonsense"], "unrecognized arguments: --nonsense"),
                                          ("abc", [], "SOURCE_DATE_EPOCH is 'abc', not a number"),
                                          (9999999999, [], "SOURCE_DATE_EPOCH is '9999999999', not a number")):
            with self.subTest(sentence):
                status, said = self.build(self.second, *options, moment=moment)
                self.assertRegex(said, rf"\A\./dev app: .*{sentence}.*\n\Z")
                self.assertEqual(status, 2)
        self.assertFalse((self.second / "stubs").exists())


class Mac(unittest.TestCase):
    """What Apple's codesign is asked to do."""

    def signed(self, identity):
        bundle, calls = fixture.signed_bundle(fixture.folder(self.addCleanup)), []
        with mock.patch.object(build, "run", lambda *words: calls.append([str(word) for word in words])):
            build.sign_with_apple(bundle, identity)
        return calls

    def test_innermost_first_hardened_always_and_entitled_only_ad_hoc(self):
        for identity, name in ((None, "-"), (IDENTITY, IDENTITY)):
            calls = self.signed(identity)
            self.assertEqual([Path(call[-1]).name for call in calls],
                             ["Helper", "Updater.framework", "Tarnwick.app", "Tarnwick.app"])
            for call in calls[:3]:
                self.assertEqual(call[call.index("--sign") + 1], name)
                self.assertEqual(call[call.index("--options") + 1], "runtime")
                self.assertEqual("--entitlements" in call, call is calls[2] and identity is None)

    def test_identity_elsewhere_or_with_placeholders_is_refused(self):
        for system, sentence in (("Linux", "only on a Mac"),
                                 ("Darwin", "fill in SUFeedURL and SUPublicEDKey in bundle/Info.plist.in")):
            with mock.patch.object(build.platform, "system", lambda: system):
                with self.assertRaisesRegex(build.BuildError, sentence):
                    build.build(Path("unused"), IDENTITY, [])
