"""win32.korvex_run: the README's two examples (examples/buttons.json with buttons.txt,
examples/display.json with display.txt), and the about box's nested modal loop closed by its close
box (about.txt here, on display.json), run by the native korvex on the portable platform and by
korvex.exe on the Win32 backend under Wine; their event logs must agree line by line.

Where the two may differ, and why (only this is normalised):
- Line ends: the Windows C runtime writes CR LF to a text-mode stdout.
- Text metrics: the portable platform lays text out with its own font engine, Wine with its own
  fonts. A caption sized to its text is placed a pixel apart, so the coordinates a pointer event
  reports relative to such a caption (a link's Hover, a button's Mouse* events) may differ by
  one pixel: 1 in pixels or 15 in twips. Everything else on such a line must be equal. Wine also
  draws wider than it measures: TextOut places glyphs further apart than GetTextExtentPoint32 on
  the same DC and font reports (from a "w" on, by a pixel or more per "w"), so the link sized to
  "www.korvex-tools.de" shows it cut after ".d" in Wine's snapshots (see atl_host.py).
The snapshots must exist on both sides with the same size. Their pixels cannot agree one for one:
besides the fonts, Wine's default colour scheme is not the classic one the portable platform draws
with, and a captioned window's frame is the system's. So each colour of the native picture is
mapped to the Windows colour it meets most often at the same places, and at least 95 % of the
pixels must agree under that mapping; the rest is text, its anti-aliasing and the caption bar
(about 2 % in these pictures). A control missing (about 9 % of the buttons picture) or moved by a
few pixels breaks the mapping where it stands; a single pixel's shift stays within the margin.

Prints, per example, how many lines matched exactly and how many within the tolerance. Skips
(77) without Wine or the programs."""

import argparse
import re
import sys
from collections import Counter
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
import wine as winelib  # noqa: E402
from pixels import read_png  # noqa: E402
from wine import run, windows_path  # noqa: E402

HERE = Path(__file__).resolve().parent
# (name, form, script), the first two relative to the examples folder.
MAPPED_AGREEMENT = 0.95
RUNS = (("buttons", "buttons.json", "buttons.txt"), ("display", "display.json", "display.txt"),
        ("about", "display.json", HERE / "about.txt"))
POINTER_EVENT = re.compile(r"^(event \w+\.\w+\()(-?\d+), (-?\d+), (-?[\d.]+), (-?[\d.]+)\)$")


def within_one_pixel(a, b):
    d = abs(float(a) - float(b))
    if d <= 1:
        return True
    # Twips: whole pixels of 15 twips at the 96 dpi both sides run at.
    return d <= 15 and float(a) % 15 == 0 and float(b) % 15 == 0


def compare_logs(native, windows):
    """(exact, tolerated, differing lines as text)."""
    exact, tolerated, bad = 0, 0, []
    n_lines, w_lines = native.splitlines(), windows.splitlines()
    for i in range(max(len(n_lines), len(w_lines))):
        n = n_lines[i] if i < len(n_lines) else "<missing>"
        w = w_lines[i] if i < len(w_lines) else "<missing>"
        if n == w:
            exact += 1
            continue
        mn, mw = POINTER_EVENT.match(n), POINTER_EVENT.match(w)
        if (mn and mw and mn.group(1, 2, 3) == mw.group(1, 2, 3)
                and within_one_pixel(mn.group(4), mw.group(4))
                and within_one_pixel(mn.group(5), mw.group(5))):
            tolerated += 1
            continue
        bad.append(f"  line {i + 1}: native  {n}\n  line {i + 1}: Windows {w}")
    return exact, tolerated, bad


def mapped_agreement(native, windows):
    """The share of pixels that agree once each native colour stands for the Windows colour it
    meets most often."""
    pairs = Counter()
    for row_n, row_w in zip(native[2], windows[2]):
        pairs.update(zip(row_n, row_w))
    best = {}
    for (colour_n, colour_w), count in pairs.items():
        if colour_n not in best or count > best[colour_n][1]:
            best[colour_n] = (colour_w, count)
    agree = sum(count for (colour_n, colour_w), count in pairs.items()
                if best[colour_n][0] == colour_w)
    return agree / max(1, native[0] * native[1])


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--native", required=True)
    p.add_argument("--windows", required=True)
    p.add_argument("--prefix", required=True)
    p.add_argument("--examples", required=True)
    p.add_argument("--out", required=True)
    args = p.parse_args()
    wine = winelib.find_wine()
    exe = Path(args.windows)
    if not wine or not exe.exists():
        print(f"skipped: {'Wine' if not wine else exe} not found")
        return winelib.SKIP
    env = winelib.wine_env(args.prefix)
    examples, out = Path(args.examples).resolve(), Path(args.out).resolve()
    failed = False
    try:
        for name, form_name, script_name in RUNS:
            form, script = examples / form_name, examples / script_name
            native_dir, windows_dir = out / name / "native", out / name / "windows"
            for folder in (native_dir, windows_dir):
                folder.mkdir(parents=True, exist_ok=True)
                for stale in folder.glob("*.png"):
                    stale.unlink()
            status_n, log_n = run([args.native, "run", str(form), "--script", str(script),
                                   "--out", str(native_dir)], timeout=180)
            status_w, log_w = run([wine, str(exe), "run", windows_path(form), "--script",
                                   windows_path(script), "--out", windows_path(windows_dir)],
                                  env=env, timeout=180)
            (out / name / "native.log").write_text(log_n)
            (out / name / "windows.log").write_text(log_w)
            if status_n != 0 or status_w != 0:
                print(f"{name}: exit status native {status_n}, Windows {status_w}")
                print(log_w.strip()[-2000:])
                failed = True
                continue
            exact, tolerated, bad = compare_logs(log_n, log_w)
            total = len(log_n.splitlines())
            print(f"{name}: {total} lines; {exact} identical, {tolerated} within one pixel of "
                  f"a text-sized caption, {len(bad)} differ")
            for line in bad:
                print(line)
            if bad or total == 0:
                failed = True
            shots = sorted(f.name for f in native_dir.glob("*.png"))
            for shot in shots:
                other = windows_dir / shot
                a = read_png(native_dir / shot)
                b = read_png(other) if other.exists() else None
                if not a or not b or a[:2] != b[:2]:
                    print(f"  snapshot {shot}: native {a and a[:2]}, Windows {b and b[:2]}")
                    failed = True
                    continue
                share = mapped_agreement(a, b)
                print(f"  snapshot {shot} ({a[0]}x{a[1]}): {share:.1%} of the pixels agree "
                      f"under the colour mapping")
                if share < MAPPED_AGREEMENT:
                    failed = True
            if not shots:
                print(f"  {name}: no snapshots")
                failed = True
    finally:
        winelib.stop_wineserver(wine, args.prefix)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
