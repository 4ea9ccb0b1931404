"""What the signer seals, the verifier confirms; whatever is changed afterwards, it names."""
import shutil
import unittest
from unittest import mock

import fixture
from macos import codesign, information, macho, verify

REFUSALS = (verify.VerificationError, information.InformationError, macho.MachOError)


def flip(path, position):
    """One bit is another one."""
    data = bytearray(path.read_bytes())
    data[position] ^= 1
    path.write_bytes(data)


def to_link(path):
    """The same file, but somewhere else."""
    elsewhere = path.parents[3] / path.name
    shutil.move(path, elsewhere)
    path.symlink_to(elsewhere)


def replace(path, old, new):
    path.write_bytes(path.read_bytes().replace(old, new))


class SignedBundle(unittest.TestCase):
    """A freshly signed application, with a framework inside, and copies of it to damage."""

    @classmethod
    def setUpClass(cls):
        cls.folder = fixture.folder(cls.addClassCleanup)
        cls.code, cls.library = fixture.program(cls.folder), fixture.library(cls.folder)
        cls.signed = fixture.make_bundle(cls.folder / "signed", cls.code)
        fixture.add_framework(cls.signed, cls.library)
        codesign.sign(cls.signed)

    def setUp(self):
        self.bundle = self.folder / "Tarnwick.app"
        shutil.rmtree(self.bundle, ignore_errors=True)
        shutil.copytree(self.signed, self.bundle, symlinks=True)

    def test_intact(self):
        directories, lines = verify.verify_application(self.bundle)
        self.assertEqual([directory.image.processor for directory in directories], ["x86_64", "arm64"])
        self.assertEqual(len(lines), 6, "two slices each of the program, the framework and its helper")
        before = (self.bundle / "Contents" / "MacOS" / "Tarnwick").read_bytes()
        codesign.sign(self.bundle)
        self.assertEqual((self.bundle / "Contents" / "MacOS" / "Tarnwick").read_bytes(), before)

    def test_damage(self):
        contents = self.bundle / "Contents"
        program, information = contents / "MacOS" / "Tarnwick", contents / "Info.plist"
        icon, seal = contents / "Resources" / "AppIcon.icns", contents / "_CodeSignature" / "CodeResources"
        framework = contents / "Frameworks" / "Updater.framework"
        intact = program.read_bytes()
        part = macho.slices(intact)[0]
        first = intact.index(part)

        def sign_another_framework():
            replace(framework / "Versions" / "B" / "Resources" / "Info.plist", b"org.example", b"org.another")
            codesign.sign(framework)

        for sentence, damage in [
                ("Tarnwick .* code was changed after signing", lambda: flip(program, first + 4096)),
                ("Tarnwick .* code was changed after signing", lambda: flip(program, first + 40)),
                ("past the end of the file", lambda: program.write_bytes(intact[:-16])),
                ("signature is not at the end", lambda: program.write_bytes(part + bytes(4096))),
                ("the signature has other parts than it should", lambda: program.write_bytes(self.code)),
                ("something between the slices", lambda: flip(program, 0x3000)),
                ("does not lie on its boundary", lambda: flip(program, 8 + 19)),
                ("something after the slices", lambda: program.write_bytes(intact + b"more")),
                ("Resources/AppIcon.icns was changed", lambda: flip(icon, 0)),
                ("Resources/AppIcon.icns is missing", icon.unlink),
                ("Text.strings was changed", lambda: flip(contents / "Resources" / "en.lproj" / "Text.strings", 0)),
                ("Info.plist is not the one", lambda: replace(information, b"1.0.0", b"1.0.1")),
                ("Info.plist is not a property list", lambda: information.write_bytes(b"<plist")),
                ("CodeResources is not the one", lambda: flip(seal, -2)),
                ("has no _CodeSignature/CodeResources", seal.unlink),
                ("Resources/Extra.txt was added", (contents / "Resources" / "Extra.txt").touch),
                ("MacOS/Other was added", (contents / "MacOS" / "Other").touch),
                ("Extra was added", (contents / "Extra").touch),
                ("holds Contents, Extra, not Contents alone", (self.bundle / "Extra").touch),
                ("MacOS/Tarnwick has the permissions 777, not 755", lambda: program.chmod(0o777)),
                ("AppIcon.icns has the permissions 755, not 644", lambda: icon.chmod(0o755)),
                ("MacOS/Tarnwick is a link", lambda: to_link(program)),
                ("Resources/AppIcon.icns is a link", lambda: to_link(icon)),
                ("Updater.framework: Extra is no link into", (framework / "Extra").touch),
                ("Updater.framework: Updater is no link into",
                 lambda: (framework / "Updater").unlink() or (framework / "Updater").write_bytes(self.library)),
                ("Updater.framework does not hold one version", (framework / "Versions" / "A").mkdir),
                ("Resources/All is a link", lambda: (contents / "Resources" / "All").symlink_to("/")),
                ("Helper .* was changed", lambda: flip(framework / "Versions" / "B" / "Helper", 0x4000 + 2000)),
                ("Updater.framework is not the code that was sealed", sign_another_framework)]:
            with self.subTest(sentence):
                self.setUp()
                damage()
                with self.assertRaisesRegex(REFUSALS, sentence):
                    verify.verify_application(self.bundle)
        self.setUp()
        (contents / "Resources" / "en.lproj" / "Text.strings").unlink()  # a localisation may go
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
