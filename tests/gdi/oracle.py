#!/usr/bin/env python3
"""Differential check of the software rasteriser against a real GDI (Wine).

  oracle.py setup   --source DIR --build DIR --prefix DIR [--generator G] [--cmake CMAKE]
      Cross-builds korvex-gdi-win.exe with MinGW-w64 and creates a fresh Wine prefix.
  oracle.py sweep   --seed N
      Prints a random drawing script for the seed (lines, shapes, regions, edges, blits, clips);
      the checked-in sweep-N.txt scripts were made this way, so any seed can be replayed.
  oracle.py compare --korvex EXE --runner EXE --prefix DIR --out DIR --scripts DIR [NAME...]
      Runs every SCRIPT.txt with `korvex gdi` and with the Windows runner under Wine and
      reports the mismatching pixels per script. Writes SCRIPT.sim.png, and on a mismatch also
      SCRIPT.win.png and SCRIPT.diff.png, into the output folder. With --locate it also finds
      the line after which the two canvases first differ.

  oracle.py smoke   --native EXE --windows EXE --prefix DIR --form FORM --out DIR
      Runs the layers' smoke program natively and its MinGW-w64 build under Wine and compares
      their reports line by line (member tables, conversions, bags, files, pictures).

Exit status: 0 all equal, 1 a mismatch or a failed run, 77 when MinGW-w64 or Wine is missing
(CTest reports the test as skipped).
"""

import argparse
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import zlib
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from wine import (MINGW_CXX, SKIP, find_wine, stop_wineserver, use_null_display,  # noqa: E402
                  wine_env, wineserver)


def skip(message):
    print(f"SKIPPED: {message}")
    return SKIP


def setup(args):
    wine = find_wine()
    if shutil.which(MINGW_CXX) is None:
        return skip(f"{MINGW_CXX} not found (install g++-mingw-w64-x86-64)")
    if wine is None:
        return skip("wine not found (install wine64)")

    source, build = Path(args.source).resolve(), Path(args.build).resolve()
    prefix = Path(args.prefix).resolve()
    configure = [args.cmake, "-S", str(source), "-B", str(build),
                 f"-DCMAKE_TOOLCHAIN_FILE={source / 'cmake' / 'mingw-w64-x86_64.cmake'}",
                 "-DKORVEX_WIN32=ON", "-DCMAKE_BUILD_TYPE=Release"]
    if args.generator:
        configure += ["-G", args.generator]
    print("+", " ".join(configure), flush=True)
    if subprocess.run(configure, check=False).returncode != 0:
        return 1
    build_command = [args.cmake, "--build", str(build), "--parallel", "2"]
    print("+", " ".join(build_command), flush=True)
    if subprocess.run(build_command, check=False).returncode != 0:
        return 1

    # A fresh prefix per test run, so nothing left by an earlier run (system colours live in
    # the prefix's registry) can change the reference.
    if prefix.exists():
        stop_wineserver(wine, prefix)
        shutil.rmtree(prefix)
    prefix.parent.mkdir(parents=True, exist_ok=True)
    print(f"+ WINEPREFIX={prefix} {wine} wineboot -i", flush=True)
    status, text = run([wine, "wineboot", "-i"], env=wine_env(prefix), timeout=600)
    # The server writes the registry files when it exits, which may be a while after wineboot
    # returns on a busy machine: wait for it before looking for them.
    wineserver(wine, prefix, "-w")
    if status != 0 or not (prefix / "system.reg").exists():
        stop_wineserver(wine, prefix)
        print(text)
        print(f"wineboot failed with status {status}")
        return 1
    # The Windows library's tests create windows in this prefix, headless.
    null_display = use_null_display(wine, prefix)
    stop_wineserver(wine, prefix)
    if not null_display:
        print("could not select Wine's null display driver")
        return 1
    return 0


def read_hex(path):
    lines = Path(path).read_text().splitlines()
    width, height = (int(v) for v in lines[0].split())
    rows = [[int(cell, 16) for cell in line.split()] for line in lines[1:1 + height]]
    if len(rows) != height or any(len(row) != width for row in rows):
        raise ValueError(f"{path}: malformed hex canvas")
    return width, height, rows


def write_png(path, width, height, rows):
    """rows hold COLORREFs (0x00BBGGRR)."""
    raw = bytearray()
    for row in rows:
        raw.append(0)
        for c in row:
            raw += bytes((c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF))

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)

    png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(bytes(raw), 9)) + chunk(b"IEND", b"")
    Path(path).write_bytes(png)


def without_text(script, target):
    """Fonts differ between the systems, so text is left out of the comparison. The line stays
    as a comment so error messages keep their line numbers."""
    out = []
    for line in Path(script).read_text().splitlines():
        words = line.split()
        out.append("# (text left out) " + line if words and words[0] == "TextOut" else line)
    Path(target).write_text("\n".join(out) + "\n")


def unstable_lines(script):
    """Lines drawing a thin ellipse whose reference pixels are undefined (see
    ellipse_rows_complete); a script must not use them or the test would be flaky."""
    checks = {"Ellipse": lambda l, t, r, b: shape_is_reference(l, t, r, b, r - l, b - t),
              "RoundRect": shape_is_reference,
              "CreateEllipticRgn": lambda l, t, r, b: region_is_reference(l, t, r, b, r - l, b - t),
              "CreateRoundRectRgn": region_is_reference}
    found = []
    for number, line in enumerate(Path(script).read_text().splitlines(), 1):
        words = line.split("#", 1)[0].split()
        if not words or words[0] not in checks:
            continue
        numbers = words[2:] if words[0].startswith("Create") else words[1:]
        try:
            values = [int(v, 0) for v in numbers]
        except ValueError:
            continue
        if not checks[words[0]](*values):
            found.append(number)
    return found


def run(command, env=None, timeout=120):
    """Output goes through a file, not a pipe: Wine's helper processes inherit the descriptors and
    outlive the program, so reading a pipe to its end would wait for them."""
    with tempfile.TemporaryFile(mode="w+") as output:
        result = subprocess.run(command, env=env, check=False, stdout=output,
                                stderr=subprocess.STDOUT, text=True, timeout=timeout)
        output.seek(0)
        return result.returncode, output.read().strip()


def run_both(args, wine, runner, env, script, stem):
    """Runs one script on both sides; returns (error text, sim canvas, GDI canvas)."""
    out = Path(args.out).resolve()
    sim_hex, win_hex = out / f"{stem}.sim.hex", out / f"{stem}.win.hex"
    for stale in (sim_hex, win_hex):
        stale.unlink(missing_ok=True)
    status, text = run([str(Path(args.korvex).resolve()), "gdi", str(script), "--hex", str(sim_hex),
                        "--png", str(out / f"{stem}.sim.png")])
    if status != 0:
        return f"korvex gdi failed ({status}): {text}", None, None
    status, text = run([wine, str(runner), str(script), "--hex", str(win_hex)], env=env)
    if status != 0 or not win_hex.exists():
        return f"Windows runner failed ({status}): {text}", None, None
    return None, read_hex(sim_hex), read_hex(win_hex)


def locate(args, wine, runner, env, script):
    """The first line after which the two canvases differ (binary search over script prefixes;
    a later call may paint over a difference, so this finds a line that introduces one)."""
    lines = Path(script).read_text().splitlines()
    probe = Path(args.out).resolve() / "locate.txt"

    def differs(count):
        probe.write_text("\n".join(lines[:count]) + "\n")
        error, sim, win = run_both(args, wine, runner, env, probe, "locate")
        return error is not None or sim != win

    low, high = 1, len(lines)  # differs(low) is false (canvas only), differs(high) is true
    while high - low > 1:
        middle = (low + high) // 2
        if differs(middle):
            high = middle
        else:
            low = middle
    return high, lines[high - 1]


def compare_one(args, wine, runner, env, script):
    """Returns (passed, message) for one script."""
    out = Path(args.out).resolve()
    name = script.stem
    unstable = unstable_lines(script)
    if unstable:
        return False, f"lines {unstable} draw thin ellipses that have no stable reference"
    filtered = out / f"{name}.txt"
    without_text(script, filtered)
    for stale in (out / f"{name}.win.png", out / f"{name}.diff.png"):
        stale.unlink(missing_ok=True)
    error, sim_canvas, win_canvas = run_both(args, wine, runner, env, filtered, name)
    if error:
        return False, error
    sw, sh, sim = sim_canvas
    ww, wh, win = win_canvas
    if (sw, sh) != (ww, wh):
        return False, f"canvas sizes differ: korvex {sw}x{sh}, GDI {ww}x{wh}"
    diffs = [(x, y) for y in range(sh) for x in range(sw) if sim[y][x] != win[y][x]]
    if not diffs:
        return True, f"0 mismatching pixels ({sw}x{sh})"

    x0, y0 = diffs[0]
    xs, ys = [d[0] for d in diffs], [d[1] for d in diffs]
    message = (f"{len(diffs)} mismatching pixels, first at ({x0},{y0}): "
               f"korvex {sim[y0][x0]:06X}, GDI {win[y0][x0]:06X}; "
               f"all within x {min(xs)}..{max(xs)}, y {min(ys)}..{max(ys)}")
    write_png(out / f"{name}.win.png", ww, wh, win)
    # The difference picture: mismatches in red over a faded copy of the reference.
    faded = [[0x0000FF if sim[y][x] != win[y][x] else ((win[y][x] & 0xFEFEFE) >> 1) + 0x7F7F7F
              for x in range(sw)] for y in range(sh)]
    write_png(out / f"{name}.diff.png", sw, sh, faded)
    for x, y in diffs[:args.verbose]:
        print(f"  {name} ({x},{y}): korvex {sim[y][x]:06X}, GDI {win[y][x]:06X}")
    if args.locate:
        line, text = locate(args, wine, runner, env, filtered)
        message += f"; first differing after line {line}: {text.strip()}"
    return False, message


def compare(args):
    wine = find_wine()
    runner = Path(args.runner).resolve()
    if shutil.which(MINGW_CXX) is None or wine is None or not runner.exists():
        return skip("the Windows runner or Wine is not available (see gdi-oracle-setup)")
    Path(args.out).resolve().mkdir(parents=True, exist_ok=True)
    scripts = sorted(s for s in Path(args.scripts).glob("*.txt") if s.name != "CMakeLists.txt")
    if args.names:
        scripts = [s for s in scripts if s.stem in args.names]
    if not scripts:
        print("no scripts found")
        return 1

    env = wine_env(args.prefix)
    # One server for all runs instead of one per script: much quicker starts.
    wineserver(wine, args.prefix, "-p")
    try:
        results = [(script.stem, *compare_one(args, wine, runner, env, script)) for script in scripts]
    finally:
        stop_wineserver(wine, args.prefix)
    width = max(len(name) for name, _, _ in results)
    for name, _, message in results:
        print(f"{name:<{width}}  {message}")
    passed = sum(1 for _, ok, _ in results if ok)
    print(f"{passed} of {len(results)} scripts match; pictures in {Path(args.out).resolve()}")
    return 0 if passed == len(results) else 1


def smoke(args):
    wine = find_wine()
    windows = Path(args.windows).resolve()
    if shutil.which(MINGW_CXX) is None or wine is None or not windows.exists():
        return skip("the Windows smoke program or Wine is not available (see gdi-oracle-setup)")
    out = Path(args.out).resolve()
    form = Path(args.form).resolve()
    reports = {}
    for side in ("native", "windows"):
        folder = out / side
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        if side == "native":
            command = [str(Path(args.native).resolve()), str(form), str(folder)]
            status, text = run(command)
        else:
            # Wine shows the build machine's root as drive Z:.
            command = [wine, str(windows), f"Z:{form}", f"Z:{folder}"]
            env = wine_env(args.prefix)
            try:
                status, text = run(command, env=env)
            finally:
                stop_wineserver(wine, args.prefix)
        print(f"+ {' '.join(command)}: status {status}", flush=True)
        if status != 0:
            print(text)
            return 1
        reports[side] = text.splitlines()
    native, win = reports["native"], reports["windows"]
    differing = [(i, a, b) for i, (a, b) in enumerate(zip(native, win), 1) if a != b]
    for number, a, b in differing:
        print(f"line {number}:\n  native:  {a}\n  windows: {b}")
    if len(native) != len(win):
        print(f"the native report has {len(native)} lines, the Windows one {len(win)}")
    summary = [line for line in win if line.startswith(("classes:", "bags:", "icon groups:"))]
    print("\n".join(summary))
    same = len(native) - len(differing)
    print(f"{same} of {max(len(native), len(win))} report lines agree")
    return 0 if not differing and len(native) == len(win) else 1


def ellipse_rows_complete(w, h):
    """Whether the integer ellipse stepper behind CreateRoundRectRgn (and the interiors of
    RoundRect and Ellipse) reaches every row of a w x h corner ellipse. For thin, tall ellipses it
    stops early and Wine leaves the remaining rows uninitialised, so such shapes are no reference
    and the sweep avoids them."""
    if w < 2 or h < 2:
        return True
    a, b = w - 1, h - 1
    dx, dy = 4 * b * b * (1 - a), 4 * a * a * (1 + b % 2)
    err = dx + dy + a * a * (b % 2)
    x, y, reached = 0, h // 2, {h // 2}
    while x <= w // 2:
        e2 = 2 * err
        if e2 >= dx:
            x += 1
            dx += 8 * b * b
            err += dx
        if e2 <= dy:
            y += 1
            dy += 8 * a * a
            err += dy
            reached.add(y)
    return reached == set(range(h // 2, h))


def region_is_reference(l, t, r, b, ew, eh):
    """CreateRoundRectRgn's arguments (also CreateEllipticRgn's with ew, eh = r-l, b-t)."""
    l, r = min(l, r), max(l, r) - 1
    t, b = min(t, b), max(t, b) - 1
    return ellipse_rows_complete(min(r - l, abs(ew)), min(b - t, abs(eh)))


def shape_is_reference(l, t, r, b, ew, eh):
    """RoundRect's arguments (also Ellipse's with ew, eh = r-l, b-t): the interior is
    CreateRoundRectRgn(l, t, r + 1, b + 1, ew, eh) unless a corner is 2 pixels or less."""
    l, r, t, b = min(l, r), max(l, r), min(t, b), max(t, b)
    ew, eh = min(r - l, abs(ew)), min(b - t, abs(eh))
    return ew <= 2 or eh <= 2 or ellipse_rows_complete(ew, eh)


def sweep(args):
    rng = random.Random(args.seed)
    w, h = 400, 300
    out = [f"# Random sweep, seed {args.seed}: tests/gdi/oracle.py sweep --seed {args.seed}",
           f"canvas {w} {h} 0x{rng.randrange(1 << 24):06X}"]
    emit = out.append

    def color():
        return f"0x{rng.randrange(1 << 24):06X}"

    def coord(limit, spill=40):
        return rng.randint(-spill, limit + spill)

    def small_box():
        x, y = rng.randint(-10, w), rng.randint(-10, h)
        return x, y, x + rng.randint(-4, 40), y + rng.randint(-4, 40)

    emit("CreateSolidBrush b0 " + color())
    emit("GetStockObject nullpen NULL_PEN")
    emit("GetStockObject nullbrush NULL_BRUSH")
    pens = ["PS_SOLID", "PS_SOLID", "PS_DASH", "PS_DOT", "PS_DASHDOT", "PS_DASHDOTDOT"]
    rops = ["R2_COPYPEN", "R2_COPYPEN", "R2_XORPEN", "R2_NOT", "R2_MASKPEN", "R2_MERGEPENNOT"]
    for i in range(args.count):
        kind = rng.choice(["line", "line", "shape", "shape", "region", "edge", "blit", "clip", "state",
                           "poly", "fill"])
        if kind == "state":
            emit(f"SetROP2 {rng.choice(rops)}")
            emit(f"SetBkMode {rng.choice(['OPAQUE', 'TRANSPARENT'])}")
            emit(f"SetBkColor {color()}")
        elif kind == "line":
            emit(f"CreatePen p{i} {rng.choice(pens)} {rng.choice([0, 1, 1])} {color()}")
            emit(f"SelectObject p{i}")
            emit(f"MoveToEx {coord(w)} {coord(h)}")
            for _ in range(rng.randint(1, 4)):
                emit(f"LineTo {coord(w)} {coord(h)}")
        elif kind == "shape":
            if rng.random() < 0.8:
                emit(f"CreatePen p{i} {rng.choice(pens)} 1 {color()}")
                emit(f"SelectObject p{i}")
            else:
                emit("SelectObject nullpen")
            emit(f"CreateSolidBrush q{i} {color()}")
            emit(f"SelectObject {'nullbrush' if rng.random() < 0.2 else f'q{i}'}")
            call = rng.choice(["Rectangle", "RoundRect", "Ellipse"])
            while True:
                l, t, r, b = small_box()
                ew, eh = (rng.randint(-2, 50), rng.randint(-2, 50)) if call == "RoundRect" else (r - l, b - t)
                if call == "Rectangle" or shape_is_reference(l, t, r, b, ew, eh):
                    break
            extra = f" {ew} {eh}" if call == "RoundRect" else ""
            emit(f"{call} {l} {t} {r} {b}{extra}")
        elif kind == "region":
            shape = rng.choice(["rr", "el", "poly"])
            if shape == "poly":
                n = rng.randint(3, 7)
                ox, oy = rng.randint(-10, w - 40), rng.randint(-10, h - 40)
                size = rng.choice([12, 40, 90])
                pts = " ".join(f"{ox + rng.randint(0, size)} {oy + rng.randint(0, size)}" for _ in range(n))
                emit(f"CreatePolygonRgn g{i} {rng.choice(['ALTERNATE', 'WINDING'])} {pts}")
            else:
                while True:
                    l, t, r, b = small_box()
                    ew, eh = (rng.randint(0, 40), rng.randint(0, 40)) if shape == "rr" else (r - l, b - t)
                    if region_is_reference(l, t, r, b, ew, eh):
                        break
                if shape == "rr":
                    emit(f"CreateRoundRectRgn g{i} {l} {t} {r} {b} {ew} {eh}")
                else:
                    emit(f"CreateEllipticRgn g{i} {l} {t} {r} {b}")
            emit(f"CreateSolidBrush q{i} {color()}")
            if rng.random() < 0.5:
                emit(f"FillRgn g{i} q{i}")
            else:
                emit(f"FrameRgn g{i} q{i} {rng.randint(1, 3)} {rng.randint(1, 3)}")
        elif kind == "edge":
            l, t, r, b = small_box()
            flags = rng.randrange(16) | rng.choice([0, 0x800]) | rng.choice([0, 0, 0x1000, 0x4000, 0x8000])
            emit(f"DrawEdge {l} {t} {r} {b} {rng.randrange(16)} 0x{flags:X}")
        elif kind == "blit":
            sx, sy = rng.randint(0, w - 20), rng.randint(0, h - 20)
            sw, sh = rng.randint(1, 30), rng.randint(1, 30)
            dx, dy = rng.randint(-10, w), rng.randint(-10, h)
            mode = rng.choice(["BLACKONWHITE", "WHITEONBLACK", "COLORONCOLOR"])
            emit(f"SetStretchBltMode {mode}")
            if rng.random() < 0.3:
                emit(f"BitBlt {dx} {dy} {sw} {sh} {sx} {sy} {rng.choice(['SRCCOPY', 'SRCINVERT', 'NOTSRCCOPY'])}")
            else:
                dw, dh = rng.choice([-1, 1]) * rng.randint(1, 45), rng.choice([-1, 1, 1]) * rng.randint(1, 45)
                emit(f"StretchBlt {dx} {dy} {dw} {dh} {sx} {sy} {sw} {sh} SRCCOPY")
        elif kind == "poly":
            emit(f"CreatePen p{i} {rng.choice(pens)} 1 {color()}")
            emit(f"SelectObject p{i}")
            emit(f"CreateSolidBrush q{i} {color()}")
            emit(f"SelectObject {'nullbrush' if rng.random() < 0.2 else f'q{i}'}")
            ox, oy = rng.randint(-20, w - 20), rng.randint(-20, h - 20)
            size = rng.choice([6, 30, 80])
            pts = " ".join(f"{ox + rng.randint(0, size)} {oy + rng.randint(0, size)}"
                           for _ in range(rng.randint(2, 7)))
            emit(f"{rng.choice(['Polygon', 'Polygon', 'Polyline'])} {pts}")
        elif kind == "fill":
            emit(f"CreateSolidBrush q{i} {color()}")
            l, t, r, b = small_box()
            call = rng.choice(["FillRect", "FrameRect", "InvertRect", "PatBlt", "SetPixel"])
            if call == "InvertRect":
                emit(f"InvertRect {l} {t} {r} {b}")
            elif call == "PatBlt":
                emit(f"SelectObject q{i}")
                rop = rng.choice(["PATCOPY", "PATINVERT", "DSTINVERT", "BLACKNESS", "WHITENESS"])
                emit(f"PatBlt {l} {t} {r - l} {b - t} {rop}")
            elif call == "SetPixel":
                for _ in range(rng.randint(1, 8)):
                    emit(f"SetPixel {rng.randint(-2, w + 1)} {rng.randint(-2, h + 1)} {color()}")
            else:
                emit(f"{call} {l} {t} {r} {b} q{i}")
        else:
            if rng.random() < 0.4:
                emit("SelectClipRgn none")
            else:
                emit(f"CreateRectRgn c{i} {' '.join(map(str, small_box()))}")
                emit(f"CreateRectRgn d{i} {' '.join(map(str, small_box()))}")
                emit(f"CombineRgn c{i} c{i} d{i} {rng.choice(['RGN_OR', 'RGN_XOR'])}")
                emit(f"SelectClipRgn c{i}")
    print("\n".join(out))
    return 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    sub = parser.add_subparsers(dest="command", required=True)
    p = sub.add_parser("setup")
    p.add_argument("--source", required=True)
    p.add_argument("--build", required=True)
    p.add_argument("--prefix", required=True)
    p.add_argument("--generator")
    p.add_argument("--cmake", default="cmake")
    p = sub.add_parser("sweep")
    p.add_argument("--seed", type=int, required=True)
    p.add_argument("--count", type=int, default=160)
    p = sub.add_parser("compare")
    p.add_argument("--korvex", required=True)
    p.add_argument("--runner", required=True)
    p.add_argument("--prefix", required=True)
    p.add_argument("--out", required=True)
    p.add_argument("--scripts", required=True)
    p.add_argument("--verbose", type=int, default=0, help="list up to this many mismatches per script")
    p.add_argument("--locate", action="store_true", help="find the line that introduces a difference")
    p.add_argument("names", nargs="*", help="only these scripts (file names without .txt)")
    p = sub.add_parser("smoke")
    p.add_argument("--native", required=True)
    p.add_argument("--windows", required=True)
    p.add_argument("--prefix", required=True)
    p.add_argument("--form", required=True)
    p.add_argument("--out", required=True)
    args = parser.parse_args()
    return {"setup": setup, "sweep": sweep, "compare": compare, "smoke": smoke}[args.command](args)


if __name__ == "__main__":
    sys.exit(main())
