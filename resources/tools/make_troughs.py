#!/usr/bin/env python3
"""Draws the two troughs of the progress bar's XP styles, resources/pictures/xp_trough.png
(229 x 19) and xp_trough_small.png (208 x 13).

The design: a rounded trough with a one-pixel grey-blue outline whose corners are cut by one
pixel and softened by a lighter pixel on each side, a white highlight line just inside the top,
and a body that darkens slightly from top to bottom, so that the chunks drawn from x = 3, y = 2
sit inside the outline. The control stretches the picture over the whole bar, so only the
proportions matter.

The output depends on nothing but this script, so running it again gives the same bytes.

    python3 resources/tools/make_troughs.py [OUTPUT_DIR]
"""

import os
import struct
import sys
import zlib

OUTLINE = (104, 104, 124)
CORNER = (176, 176, 190)
HIGHLIGHT = (255, 255, 255)
BODY_TOP = (244, 244, 240)
BODY_BOTTOM = (222, 222, 214)


def mix(a, b, t):
    return tuple(round(x + (y - x) * t) for x, y in zip(a, b))


def draw(width, height):
    rows = []
    for y in range(height):
        row = []
        for x in range(width):
            edge_x = x in (0, width - 1)
            edge_y = y in (0, height - 1)
            near_x = x in (1, width - 2)
            near_y = y in (1, height - 2)
            if edge_x and edge_y:
                colour = mix(OUTLINE, BODY_TOP, 0.75)  # the cut corner
            elif (edge_x and near_y) or (edge_y and near_x):
                colour = CORNER
            elif edge_x or edge_y:
                colour = OUTLINE
            elif y == 1:
                colour = HIGHLIGHT
            else:
                colour = mix(BODY_TOP, BODY_BOTTOM, (y - 2) / max(1, height - 4))
            row.append(colour)
        rows.append(row)
    return rows


def png(rows):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    height, width = len(rows), len(rows[0])
    raw = b"".join(b"\x00" + bytes(c for pixel in row for c in pixel) for row in rows)
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)  # 8-bit RGB
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(raw, 9)) +
            chunk(b"IEND", b""))


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "pictures")
    os.makedirs(out, exist_ok=True)
    for name, width, height in (("xp_trough.png", 229, 19), ("xp_trough_small.png", 208, 13)):
        with open(os.path.join(out, name), "wb") as f:
            f.write(png(draw(width, height)))


if __name__ == "__main__":
    main()
