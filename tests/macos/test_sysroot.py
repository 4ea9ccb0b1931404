"""What stands for Apple's SDK is exactly what was pinned and listed."""
import subprocess
import unittest

import fixture
from macos import sysroot


class Sysroot(unittest.TestCase):
    def setUp(self):
        self.folder = fixture.folder(self.addCleanup)

    def test_other_archive_is_refused(self):
        (self.folder / "headers.tgz").write_bytes(b"something else")
        with self.assertRaisesRegex(sysroot.SysrootError, "is not what it was: its checksum is"):
            sysroot.verify_archive(self.folder / "headers.tgz")

    def test_reason_for_no_download(self):
        said = "npm ERR! code ENOTFOUND\nnpm ERR! errno ENOTFOUND\nnpm ERR! network request to a place failed\nnpm ERR! more\n"
        for spelling in (said, said.replace("ERR!", "error")):
            self.assertEqual(sysroot.reason_in(spelling), "network request to a place failed")
        self.assertEqual(sysroot.reason_in(""), "npm tells no reason")

    def test_mistakes_in_the_table(self):
        for text, sentence in fixture.rows("imports.txt"):
            (self.folder / "imports.txt").write_text(text + "\n")
            with self.assertRaisesRegex(sysroot.SysrootError, sentence, msg=text):
                sysroot.read_libraries(self.folder / "imports.txt")

    def test_symbols_link_only_for_their_processor(self):
        source = "void objc_msgSend_stret(void); int main(void) { objc_msgSend_stret(); }\n"
        with self.assertRaises(subprocess.CalledProcessError) as caught:
            fixture.link(self.folder, "arm64", source=source)
        self.assertIn("undefined symbol", caught.exception.stderr)
