"""win32.backend: the Win32 backend's own checks (tests/win32/backend/backend_test.cpp), cross-built
by the gdi-oracle's MinGW tree and run in its Wine prefix. Prints the program's counts per group;
fails with any failed check. Skips (77) without Wine or the program."""

import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
import wine as winelib  # noqa: E402


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--exe", required=True)
    p.add_argument("--prefix", required=True)
    args = p.parse_args()
    wine = winelib.find_wine()
    exe = Path(args.exe)
    if not wine or not exe.exists():
        print(f"skipped: {'Wine' if not wine else exe} not found")
        return winelib.SKIP
    try:
        status, text = winelib.run_wine(wine, args.prefix, exe, timeout=300)
    finally:
        winelib.stop_wineserver(wine, args.prefix)
    print(text.strip())
    if status != 0 or "total" not in text:
        print(f"the backend's checks failed (exit status {status})")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
