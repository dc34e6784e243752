#!/usr/bin/env python3
"""Draws the toolbox bitmaps of the control library, resources/toolbox/<Name>.bmp, from the
character maps beside them, and a sheet of all of them ten times enlarged, docs/toolbox.png.

Each map is 15 rows of 16 characters, one per pixel, in the colours of resources/toolbox/palette.txt
(the 16 classic system colours); lines starting with "#" are comments. The bitmaps are what form
designers expect of a control's toolbox picture: 16 x 15, 4 bits per pixel with that palette,
BI_RGB, stored bottom-up. The host draws the bottom-left pixel's colour as transparent, so every map
keeps the background colour there.

The resource ids run from 30000 in the order of NAMES. The output depends on nothing but the maps
and this script, so running it again gives the same bytes.

    python3 resources/tools/make_toolbox.py [--out DIR] [--sheet PNG]
"""

import argparse
import os
import struct
import sys
import zlib

WIDTH, HEIGHT = 16, 15
FIRST_ID = 30000
NAMES = ["Button", "Dialog", "Frames", "Hyperlink", "Label3D", "ProgressBar", "Line3D", "Ruler",
         "Spin", "TreeEx", "Icons", "ScrollBox"]
BACKGROUND = "."

# The sheet: six bitmaps a row, each pixel a SCALE x SCALE square, GAP pixels of SHEET_COLOUR
# between and around them.
SCALE = 10
GAP = 10
COLUMNS = 6
SHEET_COLOUR = (64, 64, 64)

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
TOOLBOX = os.path.join(ROOT, "resources", "toolbox")


def read_palette(path):
    """The (character, (r, g, b)) pairs of the palette file, in palette order."""
    entries = []
    with open(path, encoding="utf-8") as f:
        for line in f:
            if not line.strip() or line.startswith("#"):
                continue
            char, rgb = line.split()[:2]
            entries.append((char, (int(rgb[0:2], 16), int(rgb[2:4], 16), int(rgb[4:6], 16))))
    if len(entries) != 16 or len({c for c, _ in entries}) != 16:
        raise ValueError(f"{path}: a 16-colour palette needs 16 distinct characters")
    return entries


def read_map(path, palette):
    """The map's rows (top first) as strings; raises on a malformed map."""
    with open(path, encoding="utf-8") as f:
        rows = [line.rstrip("\n") for line in f if not line.startswith("#")]
    chars = {c for c, _ in palette}
    if len(rows) != HEIGHT or any(len(r) != WIDTH for r in rows):
        raise ValueError(f"{path}: a map is {HEIGHT} rows of {WIDTH} characters")
    unknown = {c for r in rows for c in r} - chars
    if unknown:
        raise ValueError(f"{path}: characters not in the palette: {''.join(sorted(unknown))}")
    if rows[-1][0] != BACKGROUND:
        raise ValueError(f"{path}: the bottom-left pixel must be the background '{BACKGROUND}'")
    return rows


def bmp_bytes(rows, palette):
    index = {c: i for i, (c, _) in enumerate(palette)}
    stride = (WIDTH * 4 + 31) // 32 * 4
    pixels = bytearray()
    for row in reversed(rows):  # bottom-up
        line = bytearray(stride)
        for x, c in enumerate(row):
            line[x // 2] |= index[c] << (4 if x % 2 == 0 else 0)
        pixels += line
    colours = b"".join(struct.pack("<BBBB", b, g, r, 0) for _, (r, g, b) in palette)
    offset = 14 + 40 + len(colours)
    info = struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, 4, 0, len(pixels), 0, 0, 16, 0)
    header = struct.pack("<2sIHHI", b"BM", offset + len(pixels), 0, 0, offset)
    return header + info + colours + bytes(pixels)


def png_bytes(width, height, rgb_rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(
            ">I", zlib.crc32(kind + data) & 0xFFFFFFFF)
    raw = b"".join(b"\0" + bytes(r) for r in rgb_rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def sheet_bytes(maps, palette):
    colour = dict(palette)
    rows_of_tiles = (len(maps) + COLUMNS - 1) // COLUMNS
    width = COLUMNS * WIDTH * SCALE + (COLUMNS + 1) * GAP
    height = rows_of_tiles * HEIGHT * SCALE + (rows_of_tiles + 1) * GAP
    image = [bytearray(bytes(SHEET_COLOUR) * width) for _ in range(height)]
    for n, rows in enumerate(maps):
        left = GAP + (n % COLUMNS) * (WIDTH * SCALE + GAP)
        top = GAP + (n // COLUMNS) * (HEIGHT * SCALE + GAP)
        for y, row in enumerate(rows):
            line = b"".join(bytes(colour[c]) * SCALE for c in row)
            for dy in range(SCALE):
                image[top + y * SCALE + dy][left * 3:(left + WIDTH * SCALE) * 3] = line
    return png_bytes(width, height, image)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--out", default=TOOLBOX, help="folder for the .bmp files")
    parser.add_argument("--sheet", default=os.path.join(ROOT, "docs", "toolbox.png"),
                        help="the enlarged sheet of all bitmaps (PNG)")
    args = parser.parse_args()

    palette = read_palette(os.path.join(TOOLBOX, "palette.txt"))
    maps = [read_map(os.path.join(TOOLBOX, name + ".txt"), palette) for name in NAMES]
    os.makedirs(args.out, exist_ok=True)
    for n, (name, rows) in enumerate(zip(NAMES, maps)):
        with open(os.path.join(args.out, name + ".bmp"), "wb") as f:
            f.write(bmp_bytes(rows, palette))
        print(f"{FIRST_ID + n} {name}.bmp")
    with open(args.sheet, "wb") as f:
        f.write(sheet_bytes(maps, palette))
    return 0


if __name__ == "__main__":
    sys.exit(main())
