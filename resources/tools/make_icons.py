#!/usr/bin/env python3
"""Builds the button icon groups resources/icons/1.ico to 250.ico.

Groups 1 to 50 are the normal images, 101 to 150 the hover images and 201 to 250 the down
images of the button's built-in pictures, one .ico file per group:

    1 to 40    16 x 16 and 32 x 32   pictures of the button kinds (OK, cancel, copy, ...)
    41         16 x 16               a close cross
    42         14 x 14               check box: 42 empty, 142 checked, 242 checked by the
                                     right mouse button (a cross instead of a tick)
    43 to 46   11 x 11               LEDs red, green, yellow, blue: 43-46 and 143-146 off,
                                     243-246 lit
    47 to 50   16 x 16               list-view modes: large icons, small icons, list, details
    51         16 x 16 and 32 x 32   pOff, no image: an empty picture frame struck through
                                     (the button never shows it; Icons hands it out)

Most pictures are the public-domain Tango icons (Debian package tango-icon-theme, read from
/usr/share/icons/Tango/16x16 and 32x32, used at their own size, never scaled). The ones Tango
lacks (OK tick, cross, scanner, paint bucket, clock face, check box, LEDs, view modes, pOff) are
drawn here with antialiased shapes, each pixel covered by an 8 x 8 grid of samples.

Hover and down images of groups 1 to 41 and 47 to 50 are derived from the normal image (group 51
has none):
    hover: every colour channel c becomes c + (255 - c) // 4 (a quarter of the way to white),
           alpha unchanged;
    down:  the picture moves one pixel right and one down (the top row and left column become
           transparent, the last row and column fall off), then c becomes c * 7 // 8.

Each image is stored as a 32-bit BMP entry (BGRA, bottom-up) followed by its AND mask (bit set
where alpha is 0), so readers that ignore alpha still see the right shape.

The output depends only on this script and the Tango files, so running it again writes the
same bytes.

    python3 resources/tools/make_icons.py [OUTPUT_DIR] [--tango DIR]
"""

import math
import os
import struct
import sys
import zlib

TANGO = "/usr/share/icons/Tango"

# ---------------------------------------------------------------------------------------------
# Pictures: w x h lists of [r, g, b, a].


class Picture:
    def __init__(self, w, h, px=None):
        self.w, self.h = w, h
        self.px = px if px is not None else [[0, 0, 0, 0] for _ in range(w * h)]

    def get(self, x, y):
        return self.px[y * self.w + x]

    def copy(self):
        return Picture(self.w, self.h, [list(p) for p in self.px])


def paeth(a, b, c):
    p = a + b - c
    pa, pb, pc = abs(p - a), abs(p - b), abs(p - c)
    if pa <= pb and pa <= pc:
        return a
    return b if pb <= pc else c


def read_png(path):
    """Decodes an 8-bit, non-interlaced PNG (grey, RGB, palette, grey+alpha or RGBA)."""
    data = open(path, "rb").read()
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError(path + ": not a PNG")
    pos, idat, palette, trns = 8, b"", None, None
    while pos < len(data):
        length, kind = struct.unpack(">I4s", data[pos:pos + 8])
        body = data[pos + 8:pos + 8 + length]
        pos += 12 + length
        if kind == b"IHDR":
            w, h, depth, ctype, _, _, interlace = struct.unpack(">IIBBBBB", body)
        elif kind == b"PLTE":
            palette = [tuple(body[i:i + 3]) for i in range(0, len(body), 3)]
        elif kind == b"tRNS":
            trns = body
        elif kind == b"IDAT":
            idat += body
    if depth != 8 or interlace != 0:
        raise ValueError(path + ": only 8-bit non-interlaced PNGs are read")
    channels = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[ctype]
    raw = zlib.decompress(idat)
    stride = w * channels
    rows, prev, pos = [], bytearray(stride), 0
    for _ in range(h):
        ftype, line = raw[pos], bytearray(raw[pos + 1:pos + 1 + stride])
        pos += 1 + stride
        for i in range(stride):
            a = line[i - channels] if i >= channels else 0
            b = prev[i]
            c = prev[i - channels] if i >= channels else 0
            line[i] = (line[i] + (0, a, b, (a + b) // 2, paeth(a, b, c))[ftype]) & 255
        rows.append(line)
        prev = line
    pic = Picture(w, h)
    for y, line in enumerate(rows):
        for x in range(w):
            s = line[x * channels:(x + 1) * channels]
            if ctype == 6:
                p = list(s)
            elif ctype == 2:
                p = list(s) + [255]
            elif ctype == 4:
                p = [s[0], s[0], s[0], s[1]]
            elif ctype == 0:
                p = [s[0], s[0], s[0], 255]
            else:
                alpha = trns[s[0]] if trns is not None and s[0] < len(trns) else 255
                p = list(palette[s[0]]) + [alpha]
            pic.px[y * w + x] = p
    return pic


def png_bytes(pic):
    """Encodes an RGBA PNG (used only for the preview sheet)."""
    raw = b"".join(b"\x00" + bytes(v for x in range(pic.w) for v in pic.get(x, y))
                   for y in range(pic.h))

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(
            ">I", zlib.crc32(kind + body) & 0xFFFFFFFF)

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", pic.w, pic.h, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


# ---------------------------------------------------------------------------------------------
# Drawing: shapes given by an inside test on continuous coordinates; a pixel's coverage is the
# share of its 8 x 8 samples inside, composed with "over".

SAMPLES = 8


def blend(pic, x, y, colour, cover):
    if cover <= 0 or not (0 <= x < pic.w and 0 <= y < pic.h):
        return
    r, g, b, a = colour
    sa = a * cover / (255.0 * 255.0)
    d = pic.px[y * pic.w + x]
    da = d[3] / 255.0
    oa = sa + da * (1 - sa)
    if oa <= 0:
        return
    out = [int(round((c * sa + dc * da * (1 - sa)) / oa)) for c, dc in zip((r, g, b), d[:3])]
    pic.px[y * pic.w + x] = out + [int(round(oa * 255))]


def fill(pic, inside, colour, box=None):
    x0, y0, x1, y1 = box if box else (0, 0, pic.w, pic.h)
    for y in range(max(0, int(y0)), min(pic.h, int(math.ceil(y1)))):
        for x in range(max(0, int(x0)), min(pic.w, int(math.ceil(x1)))):
            hits = 0
            for j in range(SAMPLES):
                for i in range(SAMPLES):
                    if inside(x + (i + 0.5) / SAMPLES, y + (j + 0.5) / SAMPLES):
                        hits += 1
            blend(pic, x, y, colour, hits * 255 // (SAMPLES * SAMPLES))


def rect(pic, x0, y0, x1, y1, colour):
    fill(pic, lambda x, y: x0 <= x < x1 and y0 <= y < y1, colour, (x0, y0, x1, y1))


def frame(pic, x0, y0, x1, y1, colour, width=1):
    rect(pic, x0, y0, x1, y0 + width, colour)
    rect(pic, x0, y1 - width, x1, y1, colour)
    rect(pic, x0, y0 + width, x0 + width, y1 - width, colour)
    rect(pic, x1 - width, y0 + width, x1, y1 - width, colour)


def disc(pic, cx, cy, r, colour):
    fill(pic, lambda x, y: (x - cx) ** 2 + (y - cy) ** 2 <= r * r, colour,
         (cx - r - 1, cy - r - 1, cx + r + 1, cy + r + 1))


def seg_dist(px, py, ax, ay, bx, by):
    dx, dy = bx - ax, by - ay
    t = ((px - ax) * dx + (py - ay) * dy) / float(dx * dx + dy * dy)
    t = max(0.0, min(1.0, t))
    return math.hypot(px - ax - t * dx, py - ay - t * dy)


def stroke(pic, points, width, colour):
    segs = list(zip(points, points[1:]))
    half = width / 2.0
    fill(pic, lambda x, y: any(seg_dist(x, y, a[0], a[1], b[0], b[1]) <= half for a, b in segs),
         colour)


def polygon(pic, pts, colour):
    def inside(x, y):
        odd = False
        for (ax, ay), (bx, by) in zip(pts, pts[1:] + pts[:1]):
            if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
                odd = not odd
        return odd
    fill(pic, inside, colour)


def scaled(points, k):
    return [(x * k, y * k) for x, y in points]


# Tango palette.
BUTTER = ((252, 233, 79), (237, 212, 0), (196, 160, 0))
CHAMELEON = ((138, 226, 52), (115, 210, 22), (78, 154, 6))
SKY = ((114, 159, 207), (52, 101, 164), (32, 74, 135))
SCARLET = ((239, 41, 41), (204, 0, 0), (164, 0, 0))
ALUMINIUM = ((238, 238, 236), (211, 215, 207), (186, 189, 182), (136, 138, 133), (85, 87, 83),
             (46, 52, 54))
ORANGE = ((252, 175, 62), (245, 121, 0), (206, 92, 0))


def rgba(c, a=255):
    return (c[0], c[1], c[2], a)


# ---------------------------------------------------------------------------------------------
# The drawn pictures. Coordinates are given for 16 pixels and multiplied by size / 16.


def draw_ok(size):
    pic, k = Picture(size, size), size / 16.0
    tick = scaled([(2.5, 8.5), (6.2, 12.2), (13.5, 3.5)], k)
    stroke(pic, tick, 4.2 * k, rgba(CHAMELEON[2]))
    stroke(pic, tick, 2.4 * k, rgba(CHAMELEON[0]))
    return pic


def draw_cross(size):
    pic, k = Picture(size, size), size / 16.0
    stroke(pic, scaled([(3.5, 3.5), (12.5, 12.5)], k), 2.6 * k, rgba(ALUMINIUM[5]))
    stroke(pic, scaled([(12.5, 3.5), (3.5, 12.5)], k), 2.6 * k, rgba(ALUMINIUM[5]))
    return pic


def draw_scanner(size):
    pic, k = Picture(size, size), size / 16.0
    # A flatbed scanner seen from the front: lid raised a little over the glass, a green lamp.
    polygon(pic, scaled([(1, 8), (15, 8), (15, 14), (1, 14)], k), rgba(ALUMINIUM[3]))
    polygon(pic, scaled([(1.8, 8.8), (14.2, 8.8), (14.2, 13.2), (1.8, 13.2)], k), rgba(ALUMINIUM[1]))
    polygon(pic, scaled([(2, 3), (14, 3), (15, 7.5), (1, 7.5)], k), rgba(ALUMINIUM[4]))
    polygon(pic, scaled([(2.8, 3.8), (13.2, 3.8), (14, 6.8), (2, 6.8)], k), rgba(SKY[0]))
    rect(pic, 3 * k, 10 * k, 11 * k, 11 * k, rgba(ALUMINIUM[4]))
    disc(pic, 12.8 * k, 10.5 * k, 0.9 * k, rgba(CHAMELEON[1]))
    return pic


def draw_bucket(size):
    pic, k = Picture(size, size), size / 16.0
    # A tipped paint bucket pouring blue paint.
    body = [(3, 6), (9, 2.5), (13.5, 8.5), (7.5, 13)]
    polygon(pic, scaled(body, k), rgba(ALUMINIUM[4]))
    inner = [(4.3, 6.3), (8.8, 3.7), (12.3, 8.4), (7.7, 11.7)]
    polygon(pic, scaled(inner, k), rgba(ALUMINIUM[1]))
    stroke(pic, scaled([(6, 4.5), (6, 1.5), (10.5, 1.5), (11.5, 5)], k), 1.0 * k, rgba(ALUMINIUM[4]))
    polygon(pic, scaled([(3, 6), (1, 9), (1.5, 13), (2.8, 13.3), (3, 9.5), (5.5, 8)], k),
            rgba(SKY[1]))
    disc(pic, 2.2 * k, 13 * k, 1.3 * k, rgba(SKY[1]))
    return pic


def draw_clock(size):
    pic, k = Picture(size, size), size / 16.0
    disc(pic, 8 * k, 8 * k, 7.2 * k, rgba(ALUMINIUM[4]))
    disc(pic, 8 * k, 8 * k, 6.2 * k, rgba((255, 255, 255)))
    for i in range(12):
        angle = i * math.pi / 6
        r0 = 5.0 if i % 3 else 4.3
        stroke(pic, [(8 * k + r0 * k * math.sin(angle), 8 * k - r0 * k * math.cos(angle)),
                     (8 * k + 5.6 * k * math.sin(angle), 8 * k - 5.6 * k * math.cos(angle))],
               0.7 * k, rgba(ALUMINIUM[4]))
    stroke(pic, scaled([(8, 8), (8, 3.6)], k), 1.3 * k, rgba(ALUMINIUM[5]))
    stroke(pic, scaled([(8, 8), (11.2, 9.8)], k), 1.3 * k, rgba(ALUMINIUM[5]))
    stroke(pic, scaled([(8, 8), (5, 12)], k), 0.6 * k, rgba(SCARLET[1]))
    return pic


def draw_checkbox(mark):
    pic = Picture(14, 14)
    rect(pic, 0, 0, 14, 14, rgba((28, 81, 128)))
    for y in range(1, 13):
        # A slight top-to-bottom shade, as a flat themed check box has.
        shade = 220 + (y - 1) * 35 // 11
        rect(pic, 1, y, 13, y + 1, rgba((shade, shade, min(255, shade + 4))))
    if mark == "tick":
        stroke(pic, [(3.5, 7.2), (6, 9.8), (10.6, 4)], 2.0, rgba((33, 161, 33)))
    elif mark == "cross":
        stroke(pic, [(4, 4), (10, 10)], 1.8, rgba(SCARLET[1]))
        stroke(pic, [(10, 4), (4, 10)], 1.8, rgba(SCARLET[1]))
    return pic


LED_COLOURS = {43: ((255, 60, 50), (120, 20, 18)), 44: ((90, 240, 60), (20, 90, 20)),
               45: ((255, 230, 40), (120, 105, 20)), 46: ((70, 150, 255), (20, 50, 120))}


def draw_led(group, lit):
    pic = Picture(11, 11)
    bright, dark = LED_COLOURS[group]
    disc(pic, 5.5, 5.5, 5.4, rgba(ALUMINIUM[4]))
    disc(pic, 5.5, 5.5, 4.4, rgba(bright if lit else dark))
    if lit:
        disc(pic, 4.2, 4.0, 1.6, (255, 255, 255, 210))
    else:
        disc(pic, 4.2, 4.0, 1.2, (255, 255, 255, 70))
    return pic


def draw_view(mode):
    pic = Picture(16, 16)
    icon, text = rgba(SKY[1]), rgba(ALUMINIUM[4])
    if mode == "icon":
        for cx in (1, 9):
            for cy in (0, 8):
                rect(pic, cx, cy, cx + 6, cy + 5, icon)
                rect(pic, cx + 1, cy + 6, cx + 5, cy + 7, text)
    elif mode == "small":
        for cx in (0, 8):
            for cy in (1, 6, 11):
                rect(pic, cx, cy, cx + 3, cy + 3, icon)
                rect(pic, cx + 4, cy + 1, cx + 7, cy + 2, text)
    elif mode == "list":
        for cy in (1, 5, 9, 13):
            rect(pic, 0, cy, 3, cy + 3, icon)
            rect(pic, 4, cy + 1, 15, cy + 2, text)
    else:
        rect(pic, 0, 0, 16, 3, rgba(ALUMINIUM[2]))
        rect(pic, 5, 0, 6, 3, rgba(ALUMINIUM[4]))
        rect(pic, 10, 0, 11, 3, rgba(ALUMINIUM[4]))
        for cy in (4, 8, 12):
            rect(pic, 0, cy, 3, cy + 3, icon)
            rect(pic, 4, cy + 1, 9, cy + 2, text)
            rect(pic, 11, cy + 1, 15, cy + 2, text)
    return pic


# ---------------------------------------------------------------------------------------------
# What each normal group shows: a Tango file (context/name) or a drawing.

TANGO_ICONS = {
    1: "actions/process-stop",              # btnCancel
    2: "actions/mail-send-receive",         # btnConvert (arrows both ways)
    3: "categories/applications-graphics",  # btnColor (brush and palette)
    4: "actions/edit-copy",                 # btnCopy
    5: "devices/computer",                  # btnComputer
    6: "actions/edit-cut",                  # btnCut
    7: "devices/media-optical",             # btnCDRom
    8: "devices/drive-optical",             # btnDVD
    9: "actions/edit-delete",               # btnDelete
    10: "places/user-desktop",              # btnDesktop
    11: "apps/accessories-text-editor",     # btnEdit
    12: "actions/bookmark-new",             # btnFavorites
    14: "apps/help-browser",                # btnHelp
    15: "actions/go-home",                  # btnHome
    16: "apps/internet-web-browser",        # btnIE
    17: "status/dialog-information",        # btnInfo
    18: "apps/internet-mail",               # btnMail
    19: "mimetypes/audio-x-generic",        # btnMusic
    20: "actions/document-new",             # btnNew
    22: "actions/document-open",            # btnOpen
    23: "actions/edit-paste",               # btnPaste
    24: "devices/printer",                  # btnPrinter
    25: "actions/document-properties",      # btnProperties
    26: "actions/edit-redo",                # btnRedo
    27: "actions/document-save",            # btnSave
    28: "actions/document-save-as",         # btnSave2
    30: "actions/system-search",            # btnSearch
    31: "actions/system-lock-screen",       # btnSecurity
    32: "status/audio-volume-high",         # btnSpeaker
    33: "actions/media-playback-stop",      # btnStop
    34: "mimetypes/text-x-generic",         # btnTextEditor
    35: "categories/preferences-system",    # btnTools
    36: "actions/edit-undo",                # btnUndo
    37: "actions/view-refresh",             # btnRefresh
    38: "apps/system-users",                # btnUser
    39: "actions/document-print-preview",   # btnView
}

def draw_off(size):
    pic, k = Picture(size, size), size / 16.0
    # No image: an empty picture frame, struck through from its lower left to its upper right.
    polygon(pic, scaled([(1.5, 2.5), (14.5, 2.5), (14.5, 13.5), (1.5, 13.5)], k), rgba(ALUMINIUM[3]))
    polygon(pic, scaled([(2.5, 3.5), (13.5, 3.5), (13.5, 12.5), (2.5, 12.5)], k), rgba(ALUMINIUM[0]))
    stroke(pic, scaled([(3, 13), (13, 3)], k), 2.2 * k, rgba(SCARLET[1]))
    return pic


DRAWN = {13: draw_bucket, 21: draw_ok, 29: draw_scanner, 40: draw_clock}


def hover(pic):
    out = pic.copy()
    for p in out.px:
        p[0:3] = [c + (255 - c) // 4 for c in p[0:3]]
    return out


def down(pic):
    out = Picture(pic.w, pic.h)
    for y in range(1, pic.h):
        for x in range(1, pic.w):
            p = pic.get(x - 1, y - 1)
            out.px[y * pic.w + x] = [c * 7 // 8 for c in p[0:3]] + [p[3]]
    return out


def groups(tango):
    """Every group number with its pictures, smallest first."""
    normal = {}
    for n in range(1, 41):
        if n in DRAWN:
            normal[n] = [DRAWN[n](16), DRAWN[n](32)]
        else:
            normal[n] = [read_png(os.path.join(tango, "%dx%d" % (s, s), TANGO_ICONS[n] + ".png"))
                         for s in (16, 32)]
    normal[41] = [draw_cross(16)]
    for n, mode in zip(range(47, 51), ("icon", "small", "list", "report")):
        normal[n] = [draw_view(mode)]
    out = {}
    for n, pics in normal.items():
        out[n] = pics
        out[n + 100] = [hover(p) for p in pics]
        out[n + 200] = [down(p) for p in pics]
    out[42], out[142], out[242] = [draw_checkbox(None)], [draw_checkbox("tick")], [draw_checkbox("cross")]
    for n in range(43, 47):
        out[n] = out[n + 100] = [draw_led(n, False)]
        out[n + 200] = [draw_led(n, True)]
    out[51] = [draw_off(16), draw_off(32)]
    return out


# ---------------------------------------------------------------------------------------------
# ICO writing.


def bmp_entry(pic):
    w, h = pic.w, pic.h
    xor = b"".join(bytes((p[2], p[1], p[0], p[3])) for y in reversed(range(h))
                   for p in (pic.get(x, y) for x in range(w)))
    mask_stride = ((w + 31) // 32) * 4
    mask = bytearray()
    for y in reversed(range(h)):
        row = bytearray(mask_stride)
        for x in range(w):
            if pic.get(x, y)[3] == 0:
                row[x // 8] |= 0x80 >> (x % 8)
        mask += row
    header = struct.pack("<IiiHHIIiiII", 40, w, 2 * h, 1, 32, 0, len(xor) + len(mask), 0, 0, 0, 0)
    return header + xor + bytes(mask)


def ico_bytes(pics):
    entries = [bmp_entry(p) for p in pics]
    out = struct.pack("<HHH", 0, 1, len(pics))
    offset = 6 + 16 * len(pics)
    for pic, data in zip(pics, entries):
        out += struct.pack("<BBBBHHII", pic.w % 256, pic.h % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    return out + b"".join(entries)


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    out_dir = os.path.join(here, "..", "icons")
    tango = TANGO
    args = list(argv)
    if "--tango" in args:
        i = args.index("--tango")
        tango = args[i + 1]
        del args[i:i + 2]
    if args:
        out_dir = args[0]
    os.makedirs(out_dir, exist_ok=True)
    for n, pics in sorted(groups(tango).items()):
        with open(os.path.join(out_dir, "%d.ico" % n), "wb") as f:
            f.write(ico_bytes(pics))


if __name__ == "__main__":
    main(sys.argv[1:])
