#!/usr/bin/env python3
"""Draws the two hand cursors of the hyperlink control, resources/cursors/hand_ie.png and
hand_nc.png.

Both are 32 x 32 RGBA pictures on a fully transparent background, drawn here from character
maps. The pointing fingertip is the cursor's hot spot; it lies at the same pixel in both
pictures (HOT_SPOT below), which the control keeps as its own constant.

Transparent pixels are stored as magenta with alpha 0: a reader that drops alpha (the library's
PNG decoder does, as device bitmaps do) still tells them apart by that colour.

The output depends on nothing but this script, so running it again gives the same bytes.

    python3 resources/tools/make_cursors.py [OUTPUT_DIR]
"""

import os
import struct
import sys
import zlib

SIZE = 32
# Where each map's top-left character lands in the picture.
ORIGIN = (1, 0)
# The fingertip: map column 6, row 0 of both maps, moved by ORIGIN.
HOT_SPOT = (7, 0)

TRANSPARENT = (255, 0, 255, 0)
PALETTE = {
    "X": (0, 0, 0, 255),          # outline
    ".": (255, 255, 255, 255),    # skin
    "o": (192, 192, 192, 255),    # shading
    "c": (0, 0, 128, 255),        # cuff
}

# The slim hand of the classic browser: one white finger up, the knuckles of three folded
# fingers beside it, a round palm.
HAND_IE = [
    "      XX",
    "     X..X",
    "     X..X",
    "     X..X",
    "     X..X",
    "     X..XXX",
    "     X..X..XXX",
    "     X..X..X..XX",
    "     X..X..X..X.X",
    "  XX X........X..X",
    " X..XX...........X",
    " X...X...........X",
    "  X..............X",
    "   X.............X",
    "   X............X",
    "    X...........X",
    "    X..........X",
    "     X.........X",
    "     X........X",
    "      X.......X",
    "      X.......X",
    "      XXXXXXXXX",
]

# The broader hand with a shaded side and a dark cuff.
HAND_NC = [
    "      XX",
    "     X.oX",
    "     X.oX",
    "     X.oX",
    "     X.oX",
    "     X.oXXX",
    "     X.oX.oXXX",
    "     X.oX.oX.oXX",
    "     X.oX.oX.oX.X",
    "  XX X.o.o..o.oX.oX",
    " X..XX.........o.oX",
    " X..oX...........oX",
    "  X..o...........oX",
    "   X.............oX",
    "   X............oX",
    "    X...........oX",
    "    X..........oX",
    "     X.........oX",
    "     XXXXXXXXXXXX",
    "     XccccccccccX",
    "     XccccccccccX",
    "     XXXXXXXXXXXX",
]


def render(rows):
    pixels = [[TRANSPARENT] * SIZE for _ in range(SIZE)]
    ox, oy = ORIGIN
    for y, row in enumerate(rows):
        for x, ch in enumerate(row):
            if ch != " ":
                pixels[oy + y][ox + x] = PALETTE[ch]
    return pixels


def png(pixels):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    raw = b"".join(b"\x00" + bytes(c for p in row for c in p) for row in pixels)
    header = struct.pack(">IIBBBBB", SIZE, SIZE, 8, 6, 0, 0, 0)  # 8-bit RGBA
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) +
            chunk(b"IEND", b""))


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "cursors")
    os.makedirs(out, exist_ok=True)
    for name, rows in (("hand_ie.png", HAND_IE), ("hand_nc.png", HAND_NC)):
        pixels = render(rows)
        assert pixels[HOT_SPOT[1]][HOT_SPOT[0]] != TRANSPARENT, name
        with open(os.path.join(out, name), "wb") as f:
            f.write(png(pixels))


if __name__ == "__main__":
    main()
