"""What the signer seals, the verifier confirms; whatever is changed afterwards, it names."""
import os
import shutil
import tempfile
import unittest
from pathlib import Path

import fixture
import codesign
import macho
import verify


class SignedBundle(unittest.TestCase):
    """Each test has a freshly signed application, with a framework inside, of its own to damage."""

    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.work.cleanup)
        folder = Path(cls.work.name)
        cls.code, cls.library = fixture.program(folder), fixture.library(folder)
        cls.signed = fixture.make_bundle(folder / "signed", cls.code)
        fixture.add_framework(cls.signed, cls.library)
        codesign.sign(cls.signed)

    def setUp(self):
        copies = tempfile.TemporaryDirectory()
        self.addCleanup(copies.cleanup)
        self.bundle = Path(copies.name) / "Tarnwick.app"
        shutil.copytree(self.signed, self.bundle, symlinks=True)
        self.contents = self.bundle / "Contents"
        self.version = self.contents / "Frameworks" / "Updater.framework" / "Versions" / "B"

    def assert_refused(self, sentence):
        with self.assertRaisesRegex((verify.VerificationError, macho.MachOError), sentence):
            verify.verify_bundle(self.bundle)

    def flip(self, path, position):
        data = bytearray(path.read_bytes())
        data[position] ^= 1
        path.write_bytes(data)

    def test_intact(self):
        directories, lines = verify.verify_bundle(self.bundle)
        self.assertEqual([directory.image.processor for directory in directories], ["x86_64", "arm64"])
        self.assertEqual([directory.flags for directory in directories], [codesign.FLAG_ADHOC] * 2)
        self.assertEqual(len(lines), 6, "two slices each of the program, the framework and its helper")

    def test_changed_code(self):
        program = self.contents / "MacOS" / "Tarnwick"
        first = program.read_bytes().index(macho.slices(program.read_bytes())[0])
        for position in (first + 4096, first + 40):
            with self.subTest(position=position):
                self.flip(program, position)
                self.assert_refused("Tarnwick .* code was changed after signing")
                self.flip(program, position)
        verify.verify_bundle(self.bundle)

    def test_cut_short(self):
        program = self.contents / "MacOS" / "Tarnwick"
        program.write_bytes(program.read_bytes()[:-16])
        self.assert_refused("past the end of the file")

    def test_appended_code(self):
        part = macho.slices((self.contents / "MacOS" / "Tarnwick").read_bytes())[0]
        (self.contents / "MacOS" / "Tarnwick").write_bytes(part + bytes(4096))
        self.assert_refused("signature is not at the end")

    def test_only_signed_by_the_linker(self):
        (self.contents / "MacOS" / "Tarnwick").write_bytes(self.code)
        self.assert_refused("only the linker signed it")

    def test_resources(self):
        icon = self.contents / "Resources" / "AppIcon.icns"
        self.flip(icon, 0)
        self.assert_refused("Resources/AppIcon.icns was changed")
        icon.unlink()
        self.assert_refused("Resources/AppIcon.icns is missing")

    def test_localisation_may_be_removed_but_not_changed(self):
        text = self.contents / "Resources" / "en.lproj" / "Text.strings"
        self.flip(text, 0)
        self.assert_refused("Text.strings was changed")
        text.unlink()
        verify.verify_bundle(self.bundle)

    def test_information_dictionary(self):
        information = self.contents / "Info.plist"
        information.write_bytes(information.read_bytes().replace(b"1.0.0", b"1.0.1"))
        self.assert_refused("Info.plist is not the one")
        information.write_bytes(b"<plist")
        self.assert_refused("Info.plist is not a property list")

    def test_seal(self):
        seal = self.contents / "_CodeSignature" / "CodeResources"
        self.flip(seal, -2)
        self.assert_refused("CodeResources is not the one")
        seal.unlink()
        self.assert_refused("has no _CodeSignature/CodeResources")

    def test_added_file(self):
        for name in ("Resources/Extra.txt", "MacOS/Other", "Extra"):
            with self.subTest(name=name):
                (self.contents / name).write_bytes(b"")
                self.assert_refused(f"{name} was added")
                (self.contents / name).unlink()

    def test_added_link(self):
        os.symlink("/", self.contents / "Resources" / "Everything")
        self.assert_refused("Resources/Everything was added")

    def test_changed_framework(self):
        self.flip(self.version / "Helper", 0x4000 + 2000)
        self.assert_refused("Helper .* was changed")

    def test_hidden_between_the_slices(self):
        program = self.contents / "MacOS" / "Tarnwick"
        self.flip(program, 0x3000)
        self.assert_refused("something between the slices")
        self.flip(program, 0x3000)
        program.write_bytes(program.read_bytes() + b"more")
        self.assert_refused("something after the slices")

    def test_replaced_framework(self):
        """A framework that is intact by itself, but not the one that was sealed."""
        information = self.version / "Resources" / "Info.plist"
        information.write_bytes(information.read_bytes().replace(b"org.example", b"org.another"))
        codesign.sign(self.version.parent.parent)
        self.assert_refused("Updater.framework is not the code that was sealed")

    def test_signing_again_gives_the_same(self):
        before = (self.contents / "MacOS" / "Tarnwick").read_bytes()
        codesign.sign(self.bundle)
        self.assertEqual((self.contents / "MacOS" / "Tarnwick").read_bytes(), before)


class Refused(unittest.TestCase):
    """What cannot be signed as the system wants it."""

    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.folder = Path(work.name)

    def assert_refused(self, sentence, code):
        bundle = fixture.make_bundle(self.folder / "bundle", code)
        (bundle / "Contents" / "Frameworks" / "notes.txt").write_text("not code")
        with self.assertRaisesRegex(codesign.SigningError, sentence):
            codesign.sign(bundle)
        (bundle / "Contents" / "Frameworks" / "notes.txt").unlink()
        return bundle

    def test_plain_file_among_code(self):
        self.assert_refused("notes.txt is not code", fixture.program(self.folder))

    def test_no_room_for_a_signature(self):
        code = fixture.program(self.folder, options=["-Wl,-no_adhoc_codesign"])
        bundle = fixture.make_bundle(self.folder / "bundle", code)
        with self.assertRaisesRegex(codesign.SigningError, "no room for a signature"):
            codesign.sign(bundle)

    def test_script_instead_of_a_program(self):
        bundle = fixture.make_bundle(self.folder / "bundle", b"#!/bin/sh\n")
        with self.assertRaisesRegex(codesign.SigningError, "not a Mach-O file"):
            codesign.sign(bundle)


if __name__ == "__main__":
    unittest.main()
