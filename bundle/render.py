#!/usr/bin/env python3
"""Renders AppIcon.icns and MenuBarTemplate.png from the drawings beside this script.

The rendered files are committed, so that a build needs no renderer and packs the same bytes everywhere.
`render --check` renders again and compares, so that a drawing cannot change without its pictures. Different versions
of rsvg-convert round a few pixels differently; the comparison lets that pass and nothing that an eye would see.
"""
import struct
import subprocess
import sys
import zlib
from pathlib import Path

HERE = Path(__file__).resolve().parent
PNG_SIGNATURE = b"\x89PNG\r\n\x1a\n"

# Icon types by size in pixels. The plain 16 and 32 point types hold packed channels: the Finder shows PNG wrongly in
# those two. The others, retina types included, hold PNG.
ARGB_TYPES = {16: [b"ic04"], 32: [b"ic05"]}
PNG_TYPES = {32: [b"ic11"], 64: [b"ic12"], 128: [b"ic07"], 256: [b"ic08", b"ic13"], 512: [b"ic09", b"ic14"],
             1024: [b"ic10"]}
SMALL = 32  # up to this size AppIconSmall.svg, with fewer and stronger strokes

# 36 pixels at twice the usual density are 18 points, on every screen from one file.
STATUS_PIXELS = 36
STATUS_PIXELS_PER_METRE = round(144 / 0.0254)

TOLERANCE = 12  # largest difference of a channel, of 255


class RenderError(Exception):
    """A drawing, a picture or a tool is not as it should be; the text is for the person who runs the script."""


def rasterize(drawing, pixels):
    """The drawing as a square PNG."""
    command = ["rsvg-convert", "--format=png", f"--width={pixels}", f"--height={pixels}", str(HERE / drawing)]
    try:
        return subprocess.run(command, check=True, capture_output=True).stdout
    except FileNotFoundError:
        raise RenderError("rsvg-convert is missing; Debian has it in librsvg2-bin") from None
    except subprocess.CalledProcessError as error:
        raise RenderError(f"{drawing} cannot be drawn: {error.stderr.decode().strip()}") from None


def png_chunks(png):
    """(type, body) of each chunk."""
    position = len(PNG_SIGNATURE)
    while position < len(png):
        length, kind = struct.unpack_from(">I4s", png, position)
        yield kind, png[position + 8:position + 8 + length]
        position += length + 12


def png_of_chunks(chunks):
    """A PNG file that consists of these (type, body) chunks."""
    parts = [struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))
             for kind, body in chunks]
    return PNG_SIGNATURE + b"".join(parts)


def paeth(left, up, corner):
    """The PNG format's predictor of that name."""
    estimate = left + up - corner
    return min((abs(estimate - value), order, value) for order, value in enumerate((left, up, corner)))[2]


def rgba(png):
    """(width, height, pixels) of a PNG of 8-bit red, green, blue and alpha, the one kind that is made here."""
    chunks = list(png_chunks(png))
    width, height, *kind = struct.unpack(">2I5B", chunks[0][1])
    if kind != [8, 6, 0, 0, 0]:
        raise RenderError("a picture is not 8-bit RGBA")
    data = zlib.decompress(b"".join(body for name, body in chunks if name == b"IDAT"))
    stride, previous, pixels = width * 4, bytearray(width * 4), bytearray()
    for start in range(0, len(data), stride + 1):
        rule, row = data[start], bytearray(data[start + 1:start + 1 + stride])
        for i in range(stride if rule else 0):
            left, up = row[i - 4] if i >= 4 else 0, previous[i]
            if rule == 1:
                row[i] = (row[i] + left) & 255
            elif rule == 2:
                row[i] = (row[i] + up) & 255
            elif rule == 3:
                row[i] = (row[i] + (left + up) // 2) & 255
            else:
                row[i] = (row[i] + paeth(left, up, previous[i - 4] if i >= 4 else 0)) & 255
        pixels += row
        previous = row
    return width, height, bytes(pixels)


def pack_channel(channel):
    """Run-length packing of the icon format: 0..127 copies that many bytes plus one, 128..255 repeats 3..130 times."""
    packed, literal, position = bytearray(), bytearray(), 0

    def flush():
        if literal:
            packed.append(len(literal) - 1)
            packed.extend(literal)
            literal.clear()

    while position < len(channel):
        run = 1
        while run < 130 and channel[position + run:position + run + 1] == channel[position:position + 1]:
            run += 1
        if run >= 3:
            flush()
            packed += bytes((run + 125, channel[position]))
            position += run
        else:
            literal.append(channel[position])
            position += 1
            if len(literal) == 128:
                flush()
    flush()
    return bytes(packed)


def unpack_channels(packed):
    """What `pack_channel` packed."""
    channels, position = bytearray(), 0
    while position < len(packed):
        count = packed[position]
        if count < 128:
            channels += packed[position + 1:position + count + 2]
            position += count + 2
        else:
            channels += packed[position + 1:position + 2] * (count - 125)
            position += 2
    return bytes(channels)


def argb(png):
    """The picture as the packed alpha, red, green and blue channels of an icon file."""
    pixels = rgba(png)[2]
    return b"ARGB" + b"".join(pack_channel(pixels[channel::4]) for channel in (3, 0, 1, 2))


def render_icon():
    """AppIcon.icns: every size that the platform asks for."""
    entries = b""
    for pixels in sorted({*ARGB_TYPES, *PNG_TYPES}):
        png = rasterize("AppIconSmall.svg" if pixels <= SMALL else "AppIcon.svg", pixels)
        bodies = [(kind, argb(png)) for kind in ARGB_TYPES.get(pixels, [])]
        bodies += [(kind, png) for kind in PNG_TYPES.get(pixels, [])]
        entries += b"".join(kind + struct.pack(">I", 8 + len(body)) + body for kind, body in bodies)
    return b"icns" + struct.pack(">I", 8 + len(entries)) + entries


def render_status():
    """MenuBarTemplate.png: the density tells the system that its 36 pixels are 18 points."""
    chunks = [(kind, body) for kind, body in png_chunks(rasterize("MenuBarTemplate.svg", STATUS_PIXELS))
              if kind in (b"IHDR", b"IDAT", b"IEND")]
    chunks.insert(1, (b"pHYs", struct.pack(">2IB", STATUS_PIXELS_PER_METRE, STATUS_PIXELS_PER_METRE, 1)))
    return png_of_chunks(chunks)


def icon_entries(icon):
    """{type: body} of an icon file."""
    entries, position = {}, 8
    while position < len(icon):
        kind, length = struct.unpack_from(">4sI", icon, position)
        entries[kind] = icon[position + 8:position + length]
        position += length
    return entries


def pixels_of(picture):
    """(width, height, channels) of a PNG, or of an icon file's packed channels, which tell no more than their area."""
    if picture.startswith(b"ARGB"):
        channels = unpack_channels(picture[4:])
        return len(channels) // 4, 1, channels
    return rgba(picture)


def compare(name, committed, rendered):
    """Raises RenderError unless both pictures look the same."""
    if committed == rendered:
        return
    wide, tall, old = pixels_of(committed)
    width, height, new = pixels_of(rendered)
    if (wide, tall) != (width, height):
        raise RenderError(f"{name} is {wide} x {tall} pixels, its drawing renders to {width} x {height}")
    worst = max(abs(a - b) for a, b in zip(old, new))
    if worst > TOLERANCE:
        raise RenderError(f"{name} is not what its drawing renders to (a channel differs by {worst}): "
                          "run bundle/render.py, look at the result and commit it")


def check():
    """Raises RenderError unless the committed pictures are what the drawings show."""
    compare("MenuBarTemplate.png", (HERE / "MenuBarTemplate.png").read_bytes(), render_status())
    old, new = icon_entries((HERE / "AppIcon.icns").read_bytes()), icon_entries(render_icon())
    if list(old) != list(new):
        raise RenderError("AppIcon.icns does not hold the sizes that bundle/render.py makes")
    for kind, body in new.items():
        compare(f"AppIcon.icns ({kind.decode()})", old[kind], body)


def main(arguments):
    """Status 0 when all is well, 2 for a wrong option, 1 otherwise; with a sentence."""
    try:
        if arguments == ["--check"]:
            check()
        elif arguments:
            print(f"render: knows only --check, not {arguments[0]}", file=sys.stderr)
            return 2
        else:
            (HERE / "AppIcon.icns").write_bytes(render_icon())
            (HERE / "MenuBarTemplate.png").write_bytes(render_status())
    except RenderError as error:
        print(f"render: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
