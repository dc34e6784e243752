"""Pictures for the Windows library's tests: the korvex tool's PNGs, the hosts' 32-bit BMPs, and
their comparison. Standard library only (zlib), so the tests need no imaging package.

A picture is (width, height, rows), each row a list of 0xRRGGBB integers."""

import struct
import zlib
from pathlib import Path


def read_png(path):
    """8-bit RGB or RGBA, not interlaced: what the korvex tool writes."""
    data = Path(path).read_bytes()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(f"{path}: not a PNG")
    pos, idat, header = 8, b"", None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            idat += body
        pos += 12 + length
    width, height, depth, colour, _, _, interlace = header
    if depth != 8 or colour not in (2, 6) or interlace:
        raise ValueError(f"{path}: only 8-bit RGB(A) PNGs without interlacing are read")
    channels = 3 if colour == 2 else 4
    raw = zlib.decompress(idat)
    stride = width * channels
    rows, previous, pos = [], bytearray(stride), 0
    for _ in range(height):
        kind, line = raw[pos], bytearray(raw[pos + 1:pos + 1 + stride])
        pos += 1 + stride
        for i in range(stride):
            left = line[i - channels] if i >= channels else 0
            up = previous[i]
            corner = previous[i - channels] if i >= channels else 0
            if kind == 1:
                line[i] = (line[i] + left) & 0xFF
            elif kind == 2:
                line[i] = (line[i] + up) & 0xFF
            elif kind == 3:
                line[i] = (line[i] + (left + up) // 2) & 0xFF
            elif kind == 4:
                p = left + up - corner
                pa, pb, pc = abs(p - left), abs(p - up), abs(p - corner)
                pred = left if pa <= pb and pa <= pc else up if pb <= pc else corner
                line[i] = (line[i] + pred) & 0xFF
        rows.append([(line[x] << 16) | (line[x + 1] << 8) | line[x + 2] for x in range(0, stride, channels)])
        previous = line
    return width, height, rows


def read_bmp(path):
    """The hosts' 32-bit BI_RGB bitmaps, top-down or bottom-up."""
    data = Path(path).read_bytes()
    if data[:2] != b"BM":
        raise ValueError(f"{path}: not a BMP")
    offset = struct.unpack("<I", data[10:14])[0]
    width, height, _, bits, compression = struct.unpack("<iiHHI", data[18:34])
    if bits != 32 or compression != 0:
        raise ValueError(f"{path}: only 32-bit BI_RGB bitmaps are read")
    top_down = height < 0
    height = abs(height)
    rows = []
    for y in range(height):
        start = offset + y * width * 4
        rows.append([struct.unpack("<I", data[start + 4 * x:start + 4 * x + 4])[0] & 0xFFFFFF
                     for x in range(width)])
    if not top_down:
        rows.reverse()
    return width, height, rows


def write_png(path, picture):
    width, height, rows = picture
    raw = bytearray()
    for row in rows:
        raw.append(0)
        for c in row:
            raw += bytes(((c >> 16) & 0xFF, (c >> 8) & 0xFF, c & 0xFF))

    def chunk(kind, body):
        return (struct.pack(">I", len(body)) + kind + body
                + struct.pack(">I", zlib.crc32(kind + body) & 0xFFFFFFFF))

    png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b"")
    Path(path).write_bytes(png)


def differing(a, b):
    """The set of (x, y) where two pictures of one size differ."""
    return {(x, y) for y, (ra, rb) in enumerate(zip(a[2], b[2]))
            for x, (ca, cb) in enumerate(zip(ra, rb)) if ca != cb}


def grown_box(points, margin, width, height):
    """The bounding box of the points grown by margin pixels on each side, clipped to the picture,
    as a set of (x, y); empty when there are no points."""
    if not points:
        return set()
    xs = [x for x, _ in points]
    ys = [y for _, y in points]
    left, right = max(0, min(xs) - margin), min(width - 1, max(xs) + margin)
    top, bottom = max(0, min(ys) - margin), min(height - 1, max(ys) + margin)
    return {(x, y) for y in range(top, bottom + 1) for x in range(left, right + 1)}


def diff_picture(a, b, mismatches, allowed=frozenset()):
    """Mismatches outside the allowed area red, inside it yellow; equal pixels greyed."""
    width, height, rows = a
    out = []
    for y in range(height):
        line = []
        for x in range(width):
            if (x, y) in mismatches:
                line.append(0xFFFF00 if (x, y) in allowed else 0xFF0000)
            else:
                c = rows[y][x]
                grey = ((c >> 16) + ((c >> 8) & 0xFF) + (c & 0xFF)) // 3
                grey = 160 + grey * 95 // 255
                line.append((grey << 16) | (grey << 8) | grey)
        out.append(line)
    return width, height, out
