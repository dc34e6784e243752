#!/usr/bin/env python3
"""Checks the toolbox bitmaps in resources/toolbox against their character maps.

The bitmaps are read here with a decoder of their own (4 or 24 bits per pixel, BI_RGB), not with
the generator's writer, so a fault in either shows as a mismatch. Also checked: the twelve bitmaps
exist in resource-id order, every control class of the type library has one, the transparent
bottom-left pixel is the same colour in all, and docs/toolbox.png is the sheet of the current maps.

    check_toolbox.py SOURCE_DIR WORK_DIR
"""

import filecmp
import importlib.util
import os
import shutil
import struct
import subprocess
import sys

# Resource ids 30000 upwards, in this order.
EXPECTED = ["Button", "Dialog", "Frames", "Hyperlink", "Label3D", "ProgressBar", "Line3D", "Ruler",
            "Spin", "TreeEx", "Icons", "ScrollBox"]


def decode_bmp(data):
    """(width, height, rows of (r, g, b) top first, description) of a BI_RGB BMP."""
    magic, size, _, _, offset = struct.unpack_from("<2sIHHI", data, 0)
    if magic != b"BM" or size != len(data):
        raise ValueError("not a BMP file or wrong size in its header")
    (header_size, width, height, planes, bits, compression, _, _, _, used,
     _) = struct.unpack_from("<IiiHHIIiiII", data, 14)
    if header_size != 40 or planes != 1 or compression != 0:
        raise ValueError("needs a BITMAPINFOHEADER, one plane, BI_RGB")
    if height <= 0:
        raise ValueError("stored top-down; the toolbox expects bottom-up")
    palette = []
    if bits == 4:
        count = used or 16
        palette = [tuple(reversed(data[54 + 4 * i:54 + 4 * i + 3])) for i in range(count)]
    elif bits != 24:
        raise ValueError(f"{bits} bits per pixel; expected 4 or 24")
    stride = (width * bits + 31) // 32 * 4
    if offset + stride * height > len(data):
        raise ValueError("pixel data cut short")
    rows = []
    for y in range(height):
        line = data[offset + y * stride:offset + (y + 1) * stride]
        if bits == 4:
            indices = [(line[x // 2] >> (4 if x % 2 == 0 else 0)) & 15 for x in range(width)]
            rows.append([palette[i] for i in indices])
        else:
            rows.append([tuple(reversed(line[3 * x:3 * x + 3])) for x in range(width)])
    rows.reverse()
    return width, height, rows, f"{bits}-bit"


def load_tool(source):
    path = os.path.join(source, "resources", "tools", "make_toolbox.py")
    found = importlib.util.spec_from_file_location("make_toolbox", path)
    tool = importlib.util.module_from_spec(found)
    found.loader.exec_module(tool)
    return tool, path


def check(tool, tool_path, toolbox, idl, sheet, work):
    """The failures found, and the counts of what was checked."""
    failures = []
    counts = {"pixels": 0, "classes": 0}

    if tool.NAMES != EXPECTED:
        failures.append(f"generator's order {tool.NAMES} is not the resource-id order {EXPECTED}")
    wanted = {name + ext for name in EXPECTED for ext in (".txt", ".bmp")} | {"palette.txt"}
    present = {f for f in os.listdir(toolbox) if f.endswith((".txt", ".bmp"))}
    if wanted - present:
        failures.append(f"missing: {', '.join(sorted(wanted - present))}")
    if present - wanted:
        failures.append(f"not a control's bitmap: {', '.join(sorted(present - wanted))}")

    with open(idl, encoding="utf-8") as f:
        classes = [line.split()[1] for line in f if line.strip().startswith("coclass ")]
    counts["classes"] = len(classes)
    for name in classes:
        if name not in EXPECTED:
            failures.append(f"control class {name} has no toolbox bitmap")

    palette = tool.read_palette(os.path.join(toolbox, "palette.txt"))
    colour = dict(palette)
    transparent = set()
    for name in EXPECTED:
        if not {name + ".txt", name + ".bmp"} <= present:
            continue
        try:
            rows = tool.read_map(os.path.join(toolbox, name + ".txt"), palette)
            with open(os.path.join(toolbox, name + ".bmp"), "rb") as f:
                width, height, pixels, _ = decode_bmp(f.read())
        except (OSError, ValueError) as e:
            failures.append(f"{name}: {e}")
            continue
        if (width, height) != (16, 15):
            failures.append(f"{name}.bmp is {width} x {height}, not 16 x 15")
            continue
        wrong = [(x, y) for y in range(height) for x in range(width)
                 if pixels[y][x] != colour[rows[y][x]]]
        if wrong:
            failures.append(f"{name}.bmp differs from its map at {len(wrong)} pixels, first {wrong[0]}")
        counts["pixels"] += width * height
        transparent.add(pixels[-1][0])
    if len(transparent) > 1:
        failures.append(f"bottom-left (transparent) colours differ between bitmaps: {transparent}")

    # The sheet must show the maps as they are now.
    os.makedirs(work, exist_ok=True)
    fresh = os.path.join(work, "toolbox.png")
    subprocess.run([sys.executable, tool_path, "--out", work, "--sheet", fresh], check=True,
                   stdout=subprocess.DEVNULL)
    if not filecmp.cmp(fresh, sheet, shallow=False):
        failures.append(f"{sheet} is stale: run resources/tools/make_toolbox.py")
    return failures, counts


def main():
    source, work = sys.argv[1], sys.argv[2]
    tool, tool_path = load_tool(source)
    toolbox = os.path.join(source, "resources", "toolbox")
    idl = os.path.join(source, "docs", "korvex_tools.idl")
    failures, counts = check(tool, tool_path, toolbox, idl, os.path.join(source, "docs", "toolbox.png"),
                             os.path.join(work, "fresh"))
    for f in failures:
        print("FAIL:", f)

    # The same check on a damaged copy must find each damage, so a check that finds nothing cannot
    # pass unnoticed: one pixel of Ruler changed, Spin stored top-down,
    # Icons gone.
    damaged = os.path.join(work, "damaged")
    shutil.rmtree(damaged, ignore_errors=True)
    shutil.copytree(toolbox, damaged)
    with open(os.path.join(damaged, "Ruler.bmp"), "r+b") as f:
        data = bytearray(f.read())
        data[struct.unpack_from("<I", data, 10)[0] + 8 * 7 + 3] ^= 0x10
        f.seek(0)
        f.write(data)
    with open(os.path.join(damaged, "Spin.bmp"), "r+b") as f:
        f.seek(22)
        f.write(struct.pack("<i", -15))
    os.remove(os.path.join(damaged, "Icons.bmp"))
    found, _ = check(tool, tool_path, damaged, idl, os.path.join(source, "docs", "toolbox.png"),
                     os.path.join(work, "fresh"))
    expected = ["Ruler.bmp differs from its map at 1 pixels", "Spin: stored top-down", "missing: Icons.bmp"]
    missed = [e for e in expected if not any(e in f for f in found)]
    for m in missed:
        print("FAIL: the check missed a damage:", m)

    print(f"toolbox: {len(EXPECTED)} bitmaps, {counts['pixels']} pixels against their maps, "
          f"{counts['classes']} type library classes covered, {len(expected) - len(missed)} of "
          f"{len(expected)} damages found; {len(failures) + len(missed)} failures")
    return 1 if failures or missed else 0


if __name__ == "__main__":
    sys.exit(main())
