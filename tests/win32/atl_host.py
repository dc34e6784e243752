#!/usr/bin/env python3
"""korvex_tools.dll in Wine's ATL control host, compared with the simulated backend.

  atl_host.py shots --korvex EXE --host EXE --mingw DIR --prefix DIR --out DIR
      Registers the DLL (per user, and per machine for Wine's COM: see hosts.registered), has
      the ATL host (tests/win32/atlhost) create and in-place
      activate every public control by ProgID, set the case's properties through IDispatch and
      print the control window; renders the same control with the same properties and size with
      the native korvex tool, and compares the two pictures.
  atl_host.py bench --host EXE --mingw DIR --prefix DIR [--count N]
      Prints how long the ATL host takes to create and in-place activate N buttons, and how
      long a fixed loop takes: the machine is shared, and a slower loop means a busier machine.

The comparison: where a control draws no text, every pixel must be equal. Where it draws text,
the two systems' fonts differ (the simulated platform rasterises with FreeType, Wine with its own
font engine and substitute faces), so glyph shapes and advance widths differ: pixels may differ
only inside the text's box, found as the pixels that change between the native renderings with
and without the text (a picture that moves with its caption is inside it too), grown by
TEXT_MARGIN (4) pixels each side; outside it every pixel must be equal. Inside it the host must
still draw text: at least TEXT_INK (half) as many pixels must differ from the rendering without
text as the simulated text changes. Both sides paint with the same system colours (the prefix
gets the simulated platform's for the run). Mismatching pictures get a diff PNG (red: a real
mismatch, yellow: inside the text box).

Before any of it the host is tried on a control Wine itself provides (its web browser control),
so a broken host shows as such and not as a fault of the library. Exit status 0 all equal,
1 a mismatch or a failure, 77 without Wine, the host program or the DLL.
"""

import argparse
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
import pixels  # noqa: E402
from hosts import (find_dll, find_wine, native_snapshot, registered, run_wine, script_value,  # noqa: E402
                   simulated_colours, skip, stop_wineserver, windows_path)

# Glyphs of one size drawn by two font engines: different shapes and advance widths, so a word's
# right end moves by a few pixels; anti-aliasing adds a pixel around each stroke. Wine (8.0) adds
# a fault of its own: TextOut places glyphs further apart than GetTextExtentPoint32 on the same
# DC and font measures them, so a caption sized to its text loses its last pixels. "Verweis" in
# MS Sans Serif 8.25 (Liberation Sans, 11 pixels) measures 39 pixels and is inked up to x = 40
# from the "w" on; drawn with ExtTextOut at the measured advances it ends at x = 37 as it should.
# Its ascent is also a pixel larger than FreeType's, so the caption sits a pixel lower.
TEXT_MARGIN = 4
# ... but text there must be: the share of the simulated text's pixels the host's text must match
# in number (changed from the rendering without text).
TEXT_INK = 0.5

# name, class, width and height in pixels, properties in the order the host sets them, the
# properties that carry text (left empty for the text box).
CASES = [
    ("line_horizontal", "Line3D", 120, 30,
     {"Orientation": 0, "BorderWidth": 2, "BorderColor": 0x8000000C, "BorderForeColor": 0x80000014}, []),
    ("line_vertical", "Line3D", 30, 90,
     {"Orientation": 1, "BorderWidth": 3, "BorderColor": 0x0000FF, "BorderForeColor": 0xFFFFFF}, []),
    ("frames_bright", "Frames", 160, 90,
     {"Caption": "", "BorderStyle": 3, "BackColorF": 0xC0E0FF, "TextColor": 0}, []),
    ("frames_xp", "Frames", 160, 90, {"Caption": "", "BorderStyle": 10, "BackColorF": 0x8000000F}, []),
    ("frames_caption", "Frames", 160, 90,
     {"Caption": "Gruppe", "BorderStyle": 8, "BackColorF": 0x8000000F, "TextColor": 0x800000}, ["Caption"]),
    ("button_picture", "Button", 90, 32,
     {"Caption": "", "ButtonShow": 21, "BorderStyle": 3, "Gradient": False, "ToolTip": False,
      "ButtonColor": 0x8000000F, "BackColorB": 0x8000000F}, []),
    ("button_xp", "Button", 90, 32,
     {"Caption": "", "ButtonShow": 44, "BorderStyle": 5, "Gradient": True, "ToolTip": False}, []),
    ("button_caption", "Button", 100, 32,
     {"Caption": "Senden", "ButtonShow": 51, "BorderStyle": 2, "ToolTip": False, "FontColor": 0x000080},
     ["Caption"]),
    ("label", "Label3D", 140, 30,
     {"Caption": "Korvex", "TextColor": 0x800000, "BackColorL": 0xFFFFFF, "Shadow": True,
      "FontName": "Arial", "FontSize": 10, "FontBold": True}, ["Caption"]),
    ("hyperlink", "Hyperlink", 120, 24,
     {"AutoSizeH": False, "Caption": "korvex", "BackColorH": 0xFFFFFF, "LinkColor": 0xFF0000,
      "Url": "about:blank"}, ["Caption"]),
    ("icons", "Icons", 40, 40, {}, []),
    ("line_thick", "Line3D", 150, 20,
     {"Orientation": 0, "BorderWidth": 4, "BorderColor": 0x404080, "BorderForeColor": 0xC0C0FF}, []),
    ("button_disabled", "Button", 90, 32,
     {"Caption": "", "ButtonShow": 27, "BorderStyle": 2, "ToolTip": False, "EnabledB": False}, []),
    ("button_picture_caption", "Button", 110, 36,
     {"Caption": "Öffnen", "ButtonShow": 22, "BorderStyle": 1, "ToolTip": False}, ["Caption"]),
    ("frames_centred", "Frames", 140, 70,
     {"Caption": "Mitte", "Alignment": 1, "BorderStyle": 9, "BackColorF": 0xF0F0F0}, ["Caption"]),
    ("label_flat", "Label3D", 120, 24,
     {"Caption": "Flach", "Shadow": False, "TextColor": 0x008000, "BackColorL": 0xE0FFFF}, ["Caption"]),
    ("hyperlink_border", "Hyperlink", 130, 26,
     {"AutoSizeH": False, "Caption": "Verweis", "BorderStyle": 1, "Alignment": 1, "BackColorH": 0xE0FFFF},
     ["Caption"]),
]

STOCK = "stock Shell.Explorer.2 120 60 Silent=True"


def case_line(name, cls, width, height, properties):
    props = " ".join(f"{key}={script_value(value)}" for key, value in properties.items())
    return f"{name} Korvex_Tools.{cls} {width} {height} {props}".rstrip()


def run_host(wine, prefix, host, out, stem, lines):
    cases = out / f"{stem}.txt"
    cases.write_text("\n".join(lines) + "\n")
    status, text = run_wine(wine, prefix, host, "shots", windows_path(cases), windows_path(out), timeout=300)
    print(text.rstrip())
    return status, text


def compare(korvex, out, case):
    """Returns the line to print and whether it passes."""
    name, cls, width, height, properties, text_keys = case
    host_bmp = out / f"{name}.bmp"
    (out / f"{name}.diff.png").unlink(missing_ok=True)
    if not host_bmp.exists():
        return f"{name}: no picture from the ATL host", False
    host = pixels.read_bmp(host_bmp)
    pixels.write_png(out / f"{name}.atl.png", host)
    sim = pixels.read_png(native_snapshot(korvex, out, name, f"Korvex_Tools.{cls}", width, height, properties))
    if host[:2] != sim[:2]:
        return (f"{name}: {cls} window {host[0]}x{host[1]} in the ATL host, {sim[0]}x{sim[1]} in the "
                f"simulated run"), False
    mismatches = pixels.differing(host, sim)
    allowed, drawn = set(), True
    if text_keys:
        blank = dict(properties, **{key: "" for key in text_keys})
        plain = pixels.read_png(native_snapshot(korvex, out, name + "_blank", f"Korvex_Tools.{cls}",
                                                width, height, blank))
        ink = pixels.differing(sim, plain)
        allowed = pixels.grown_box(ink, TEXT_MARGIN, sim[0], sim[1])
        # The freedom inside the box is for other glyphs, not for none: the host's text must
        # change at least TEXT_INK of the pixels the simulated text changes.
        host_ink = pixels.differing(host, plain) & allowed
        drawn = len(host_ink) >= TEXT_INK * len(ink)
    outside = mismatches - allowed
    if mismatches:
        pixels.write_png(out / f"{name}.diff.png", pixels.diff_picture(sim, host, mismatches, allowed))
    width, height = sim[0], sim[1]
    total = width * height
    if text_keys:
        line = (f"{name}: {cls} {width}x{height}: {len(outside)} of {total - len(allowed)} pixels differ "
                f"outside the text box, {len(mismatches) - len(outside)} of {len(allowed)} inside it"
                + ("" if drawn else "; the ATL host's picture has (almost) no text in the box"))
    else:
        line = f"{name}: {cls} {width}x{height}: {len(mismatches)} of {total} pixels differ"
    return line, not outside and drawn


def shots(args):
    wine = find_wine()
    if wine is None:
        return skip("wine not found")
    host = Path(args.host)
    if not host.exists():
        return skip(f"{host} not built (the MinGW tree is made by gdi-oracle-setup)")
    prefix, out = Path(args.prefix), Path(args.out)
    out.mkdir(parents=True, exist_ok=True)
    try:
        # The host itself, on a control Wine provides.
        status, text = run_host(wine, prefix, host, out, "stock", [STOCK])
        if status == 77:
            return skip("Wine has no atl.dll")
        if status != 0 or "stock: Silent = True" not in text:
            print("the ATL host failed on Wine's own control")
            return 1
        print("stock control: Shell.Explorer.2 created, in-place active, a property set and read back, printed")

        dll = find_dll(args.mingw)
        if dll is None:
            return skip(f"no korvex_tools.dll in {args.mingw}")
        with simulated_colours(wine, prefix, out), registered(wine, prefix, dll, out):
            status, text = run_host(wine, prefix, host, out, "cases",
                                    [case_line(*case[:5]) for case in CASES])
        failed = status != 0
        exact = tolerated = 0
        for case in CASES:
            line, ok = compare(args.korvex, out, case)
            print(("  " if ok else "  MISMATCH ") + line)
            failed |= not ok
            if ok:
                exact += not case[5]
                tolerated += bool(case[5])
        print(f"atl_host: {len(CASES)} controls in the ATL host, {exact} equal pixel for pixel, "
              f"{tolerated} equal outside their text box (margin {TEXT_MARGIN} px); "
              f"pictures in {out}")
        return 1 if failed else 0
    finally:
        stop_wineserver(wine, prefix)


def bench(args):
    wine = find_wine()
    if wine is None:
        return skip("wine not found")
    host = Path(args.host)
    if not host.exists():
        return skip(f"{host} not built")
    dll = find_dll(args.mingw)
    if dll is None:
        return skip(f"no korvex_tools.dll in {args.mingw}")
    prefix = Path(args.prefix)
    try:
        with tempfile.TemporaryDirectory() as scratch, registered(wine, prefix, dll, scratch):
            status, text = run_wine(wine, prefix, host, "bench", args.count, "Korvex_Tools.Button", timeout=300)
        print(text.rstrip())
        return 0 if status == 0 else 1
    finally:
        stop_wineserver(wine, prefix)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = parser.add_subparsers(dest="command", required=True)
    s = sub.add_parser("shots")
    s.add_argument("--korvex", required=True)
    b = sub.add_parser("bench")
    b.add_argument("--count", type=int, default=100)
    for p in (s, b):
        p.add_argument("--host", required=True)
        p.add_argument("--mingw", required=True)
        p.add_argument("--prefix", required=True)
    s.add_argument("--out", required=True)
    args = parser.parse_args()
    return shots(args) if args.command == "shots" else bench(args)


if __name__ == "__main__":
    sys.exit(main())
