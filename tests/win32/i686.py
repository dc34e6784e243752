#!/usr/bin/env python3
"""The library's layers built for 32-bit Windows (MinGW-w64 i686) must report under Wine what
their 64-bit build reports: the smoke program of src/platform/win32 runs in both builds, and the
reports and the files it writes are compared.

    i686.py --source DIR --build DIR --prefix DIR --windows64 EXE --form FORM.json --out DIR
            [--cmake CMAKE] [--generator G]

Debian's wine64 runs 32-bit programs in Wine's experimental WoW64 mode when it finds Wine's
32-bit DLLs; `scripts/deps.sh --with-i686` installs the cross compiler and takes those DLLs from
Debian's libwine:i386 (without adding the i386 architecture). Their folder is
$KORVEX_WINE_I386 or /usr/local/lib/korvex/wine-i386. Without any of it the test is skipped (77).
A prefix for WoW64 must be made with the DLLs in reach, so this test keeps one of its own.
"""

import argparse
import filecmp
import os
import shutil
import struct
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from wine import SKIP, find_wine, run, stop_wineserver, wine_env  # noqa: E402

MINGW32_CXX = "i686-w64-mingw32-g++"
I386_MACHINE = 0x14C


def skip(message):
    print(f"SKIPPED: {message}")
    return SKIP


def wine_i386_dir():
    for candidate in (os.environ.get("KORVEX_WINE_I386"), "/usr/local/lib/korvex/wine-i386"):
        if candidate and (Path(candidate) / "i386-windows" / "ntdll.dll").exists():
            return Path(candidate)
    return None


def pe_machine(path):
    data = Path(path).read_bytes()[:4096]
    offset = struct.unpack_from("<I", data, 0x3C)[0]
    if data[offset:offset + 4] != b"PE\0\0":
        return None
    return struct.unpack_from("<H", data, offset + 4)[0]


def env_for(prefix, dlls):
    env = wine_env(prefix)
    env["WINEDLLPATH"] = str(dlls)
    return env


def build(args, source, tree):
    configure = [args.cmake, "-S", str(source), "-B", str(tree),
                 f"-DCMAKE_TOOLCHAIN_FILE={source / 'cmake' / 'mingw-w64-i686.cmake'}",
                 "-DKORVEX_WIN32=ON", "-DCMAKE_BUILD_TYPE=Release"]
    if args.generator:
        configure += ["-G", args.generator]
    for command in (configure, [args.cmake, "--build", str(tree), "--parallel", "2", "--target",
                                "korvex_layers_smoke"]):
        print("+", " ".join(command), flush=True)
        if subprocess.run(command, check=False).returncode != 0:
            return None
    return tree / "src" / "platform" / "win32" / "korvex-layers-smoke.exe"


def make_prefix(wine, prefix, dlls):
    """A prefix whose syswow64 holds the 32-bit DLLs; kept between runs (making one takes
    about 20 s and over a gigabyte)."""
    if (prefix / "drive_c" / "windows" / "syswow64" / "ntdll.dll").exists():
        return True
    shutil.rmtree(prefix, ignore_errors=True)
    prefix.parent.mkdir(parents=True, exist_ok=True)
    print(f"+ WINEPREFIX={prefix} WINEDLLPATH={dlls} {wine} wineboot -i", flush=True)
    status, text = run([wine, "wineboot", "-i"], env=env_for(prefix, dlls), timeout=600)
    stop_wineserver(wine, prefix)
    if status != 0 or not (prefix / "drive_c" / "windows" / "syswow64" / "ntdll.dll").exists():
        print(text)
        return False
    return True


def main():
    p = argparse.ArgumentParser()
    for option in ("--source", "--build", "--prefix", "--windows64", "--form", "--out"):
        p.add_argument(option, required=True)
    p.add_argument("--cmake", default="cmake")
    p.add_argument("--generator")
    args = p.parse_args()

    wine = find_wine()
    dlls = wine_i386_dir()
    windows64 = Path(args.windows64).resolve()
    if shutil.which(MINGW32_CXX) is None:
        return skip(f"{MINGW32_CXX} not found (scripts/deps.sh --with-i686)")
    if wine is None or dlls is None:
        return skip("Wine's 32-bit DLLs not found (scripts/deps.sh --with-i686)")
    if not windows64.exists():
        return skip("the 64-bit smoke program is not built (see gdi-oracle-setup)")

    started = time.monotonic()
    windows32 = build(args, Path(args.source).resolve(), Path(args.build).resolve())
    if windows32 is None:
        return 1
    machines = {"i686": pe_machine(windows32), "x86-64": pe_machine(windows64)}
    if machines["i686"] != I386_MACHINE:
        print(f"{windows32} is not a 32-bit program (machine {machines['i686']})")
        return 1
    built = time.monotonic()
    prefix = Path(args.prefix).resolve()
    if not make_prefix(wine, prefix, dlls):
        return 1
    ready = time.monotonic()

    form = Path(args.form).resolve()
    out = Path(args.out).resolve()
    reports = {}
    env = env_for(prefix, dlls)
    try:
        for side, program in (("x86-64", windows64), ("i686", windows32)):
            folder = out / side
            shutil.rmtree(folder, ignore_errors=True)
            folder.mkdir(parents=True)
            # Wine shows the build machine's root as drive Z:.
            command = [wine, str(program), f"Z:{form}", f"Z:{folder}"]
            status, text = run(command, env=env)
            print(f"+ {' '.join(command)}: status {status}", flush=True)
            if status != 0:
                print(text)
                return 1
            reports[side] = text.splitlines()
    finally:
        stop_wineserver(wine, prefix)

    wide, narrow = reports["x86-64"], reports["i686"]
    differing = [(i, a, b) for i, (a, b) in enumerate(zip(wide, narrow), 1) if a != b]
    for number, a, b in differing:
        print(f"line {number}:\n  x86-64: {a}\n  i686:   {b}")
    if len(wide) != len(narrow):
        print(f"the x86-64 report has {len(wide)} lines, the i686 one {len(narrow)}")
    files = sorted(f.name for f in (out / "x86-64").iterdir())
    match, mismatch, errors = filecmp.cmpfiles(out / "x86-64", out / "i686", files, shallow=False)
    extra = sorted(set(f.name for f in (out / "i686").iterdir()) - set(files))
    for name in mismatch + errors + extra:
        print(f"written file differs or is missing on one side: {name}")
    same = len(wide) - len(differing)
    print(f"build {built - started:.0f} s, prefix {ready - built:.0f} s, runs "
          f"{time.monotonic() - ready:.0f} s")
    print(f"i686: {same} of {max(len(wide), len(narrow))} report lines agree with x86-64, "
          f"{len(match)} of {len(files) + len(extra)} written files identical")
    ok = wide and not differing and len(wide) == len(narrow) and not (mismatch or errors or extra)
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
