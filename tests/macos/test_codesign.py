"""What the signer seals, the verifier confirms; whatever is changed afterwards, it names."""
import shutil
import unittest
from unittest import mock

import fixture
from macos import codesign, information, macho, verify

REFUSALS = (verify.VerificationError, information.InformationError, macho.MachOError)


class SignedBundle(unittest.TestCase):
    """A freshly signed application, with a framework inside, and copies of it to damage."""

    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        cls.code = fixture.program(cls.folder)
        cls.signed = fixture.signed_bundle(fixture.folder(cls.addClassCleanup))

    def setUp(self):
        self.bundle = self.folder / "Tarnwick.app"
        shutil.rmtree(self.bundle, ignore_errors=True)
        shutil.copytree(self.signed, self.bundle, symlinks=True)

    def test_intact(self):
        directories, lines = verify.verify_application(self.bundle)
        self.assertEqual([directory.image.processor for directory in directories], ["x86_64", "arm64"])
        self.assertEqual(len(lines), 6, "two slices each of the program, the framework and its helper")
        program = self.bundle / "Contents" / "MacOS" / "Tarnwick"
        before = program.read_bytes()
        codesign.sign(self.bundle)
        self.assertEqual(program.read_bytes(), before)

    def test_damage(self):
        code = (self.bundle / "Contents" / "MacOS" / "Tarnwick").read_bytes()
        (self.folder / "linked").write_bytes(self.code)
        (self.folder / "slice").write_bytes(macho.slices(code)[0])
        another = self.folder / "Another.framework"
        shutil.copytree(self.bundle / "Contents" / "Frameworks" / "Updater.framework", another, symlinks=True)
        dictionary = another / "Versions" / "B" / "Resources" / "Info.plist"
        dictionary.write_bytes(dictionary.read_bytes().replace(b"org.example", b"org.another"))
        codesign.sign(another)
        for commands, sentence in fixture.rows("sealed.txt"):
            with self.subTest(commands):
                self.setUp()
                fixture.change(self.bundle / "Contents", commands)
                with self.assertRaisesRegex(REFUSALS, sentence):
                    verify.verify_application(self.bundle)
        self.setUp()
        (self.bundle / "Contents" / "Resources" / "en.lproj" / "Text.strings").unlink()  # a localisation may go
        verify.verify_application(self.bundle)

    def test_right_to_load_a_framework_only_where_there_is_one(self):
        for part in macho.slices((self.bundle / "Contents" / "MacOS" / "Tarnwick").read_bytes()):
            self.assertIn(codesign.LIBRARY_ENTITLEMENT.encode(), part)
        plain = fixture.make_bundle(self.folder / "plain", self.code)
        codesign.sign(plain)
        self.assertEqual(len(verify.verify_application(plain)[1]), 2)
        program = plain / "Contents" / "MacOS" / "Tarnwick"
        self.assertNotIn(codesign.LIBRARY_ENTITLEMENT.encode(), program.read_bytes())
        codesign.sign_program(program, "app.tarnwick.Tarnwick", (plain / "Contents" / "Info.plist").read_bytes(),
                              (plain / "Contents" / "_CodeSignature" / "CodeResources").read_bytes(), entitled=True)
        with self.assertRaisesRegex(verify.VerificationError, "the signature has other parts than it should"):
            verify.verify_application(plain)

    def test_another_right(self):
        with mock.patch.object(codesign, "LIBRARY_ENTITLEMENT", "com.apple.security.cs.disable-executable-protect"):
            codesign.sign(self.bundle)
        with self.assertRaisesRegex(verify.VerificationError, "other entitlements than the one"):
            verify.verify_application(self.bundle)


class Refused(unittest.TestCase):
    """What cannot be signed as the system wants it."""

    def test_sentences(self):
        folder = fixture.folder(self.addCleanup)
        for sentence, place, code in [
                ("notes.txt is not code", "Frameworks", fixture.program(folder)),
                ("no room for a signature", "Resources", fixture.program(folder, options=["-Wl,-no_adhoc_codesign"])),
                ("Tarnwick is not a Mach-O file that can be signed", "Resources", b"#!/bin/sh\n")]:
            bundle = fixture.make_bundle(fixture.folder(self.addCleanup), code)
            (bundle / "Contents" / place / "notes.txt").write_text("not code")
            with self.assertRaisesRegex(codesign.SigningError, sentence):
                codesign.sign(bundle)
