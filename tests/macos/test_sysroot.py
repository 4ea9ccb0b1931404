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

    def test_mistakes_in_the_table(self):
        for text, sentence in [
                ("symbol before any library\n", "imports.txt:1: neither a library"),
                ("  early  10.0  x:A\n", "imports.txt:1: neither a library"),
                ("A  /usr/lib/a\n", "imports.txt:1: neither a library with its install name and versions"),
                ("A  /usr/lib/a  1  1\n  f  10.0\n", "imports.txt:2: a symbol needs its first macOS and its source"),
                ("A  /usr/lib/a  1  1\n  f  new  x:A\n", "imports.txt:2: a symbol needs its first macOS and its source"),
                ("A  /usr/lib/a  1  1\n  f  10.0  x:B/b.h\n", "imports.txt:2: f is listed under A, but its source says B"),
                ("A  /usr/lib/a  1  1\n  f  10.0  x:A\nB  /usr/lib/b  1  1\n  f  10.0  x:B\n",
                 "imports.txt:4: f is listed twice")]:
            (self.folder / "imports.txt").write_text(text)
            with self.assertRaisesRegex(sysroot.SysrootError, sentence, msg=text):
                sysroot.read_libraries(self.folder / "imports.txt")

    def test_symbols_link_only_for_their_processor(self):
        source = "void objc_msgSend_stret(void); int main(void) { objc_msgSend_stret(); }\n"
        with self.assertRaises(subprocess.CalledProcessError) as caught:
            fixture.link(self.folder, "arm64", source=source)
        self.assertIn("undefined symbol", caught.exception.stderr)
