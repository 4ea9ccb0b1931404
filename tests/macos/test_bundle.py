"""The committed pictures are what the drawings show, at every size that the platform looks for."""
import shutil
import struct
import subprocess
import unittest

import fixture
from bundle import render

BUNDLE = fixture.ROOT / "bundle"
PIXELS = {b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic08": 256, b"ic13": 256, b"ic09": 512, b"ic14": 512, b"ic10": 1024}


class Icon(unittest.TestCase):
    def setUp(self):
        self.entries = render.icon_entries((BUNDLE / "AppIcon.icns").read_bytes())

    def test_every_size(self):
        sizes = {kind: struct.unpack_from(">2I", body, 16) for kind, body in self.entries.items() if kind in PIXELS}
        self.assertEqual(sizes, {kind: (pixels, pixels) for kind, pixels in PIXELS.items()})

    def test_small_sizes_hold_the_same_picture_as_channels(self):
        pixels = render.rgba(self.entries[b"ic11"])[2]
        self.assertEqual(self.entries[b"ic05"][:4], b"ARGB")
        channels = render.unpack_channels(self.entries[b"ic05"][4:])
        self.assertEqual(channels, pixels[3::4] + pixels[0::4] + pixels[1::4] + pixels[2::4])

    def test_packing(self):
        for channel in (b"", b"a", b"aab", b"aaa", b"a" * 130, b"a" * 131, b"a" * 133, bytes(range(128)),
                        bytes(range(200)) + b"zzz" + bytes(range(129))):
            with self.subTest(channel[:8]):
                self.assertEqual(render.unpack_channels(render.pack_channel(channel)), channel)


class StatusImage(unittest.TestCase):
    def test_black_template_of_18_points(self):
        png = (BUNDLE / "MenuBarTemplate.png").read_bytes()
        width, height, pixels = render.rgba(png)
        density = struct.unpack(">2IB", dict(render.png_chunks(png))[b"pHYs"])
        self.assertEqual((width, height), (36, 36))
        self.assertEqual([round(width / dots * 72 / 0.0254) for dots in density[:2]], [18, 18])
        self.assertEqual(set(pixels[0::4] + pixels[1::4] + pixels[2::4]), {0})
        self.assertEqual((min(pixels[3::4]), max(pixels[3::4])), (0, 255))


class Rendering(unittest.TestCase):
    """`render --check` on copies of the folder."""

    def check(self, commands):
        folder = fixture.folder(self.addCleanup) / "bundle"
        shutil.copytree(BUNDLE, folder)
        fixture.change(folder, commands)
        result = subprocess.run([folder / "render.py", "--check"], capture_output=True, text=True, check=False)
        return result.returncode, result.stderr

    def test_committed_and_changed_pictures(self):
        self.assertEqual(self.check(""), (0, ""))
        for commands, sentence in fixture.rows("drawings.txt"):
            with self.subTest(commands):
                status, said = self.check(commands)
                self.assertEqual(status, 1)
                self.assertRegex(said, sentence)
