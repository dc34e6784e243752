"""win32.com: korvex_tools.dll checked by tests/win32/com/com_test.cpp in the gdi-oracle's Wine
prefix (registration, late binding against the member tables, errors, events, persistence), the
property bags compared with what the native `korvex bag` writes for the same forms.
win32.com.bench: the late-binding benchmark (com_bench.cpp); it prints its figures and asserts
nothing about them. Both skip (77) without Wine or the cross-built programs."""

import argparse
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "support"))
import wine as winelib  # noqa: E402


def run_wine(wine, prefix, command, timeout):
    try:
        return winelib.run_wine(wine, prefix, *command, timeout=timeout)
    finally:
        winelib.stop_wineserver(wine, prefix)


def main():
    p = argparse.ArgumentParser()
    p.add_argument("--exe", required=True)
    p.add_argument("--dll", required=True)
    p.add_argument("--prefix", required=True)
    p.add_argument("--korvex", help="the native korvex, for the bags of --forms")
    p.add_argument("--forms", nargs="*", default=[])
    p.add_argument("--out", help="where the native bags go")
    p.add_argument("--bench", action="store_true")
    args = p.parse_args()
    wine = winelib.find_wine()
    for needed in (args.exe, args.dll):
        if not Path(needed).exists():
            print(f"skipped: {needed} not found")
            return winelib.SKIP
    if not wine:
        print("skipped: Wine not found")
        return winelib.SKIP

    if args.bench:
        status, text = run_wine(wine, args.prefix, [args.exe, args.dll, "0.3"], 300)
        print(text.strip())
        return 0 if status == 0 and "IDispatch::Invoke" in text else 1

    command = [args.exe, args.dll]
    out = Path(args.out)
    out.mkdir(parents=True, exist_ok=True)
    for form in args.forms:
        bag = out / (Path(form).stem + ".bags.json")
        native = subprocess.run([args.korvex, "bag", form], stdout=subprocess.PIPE, text=True,
                                check=False)
        if native.returncode != 0:
            print(f"korvex bag {form} failed")
            return 1
        bag.write_text(native.stdout, encoding="utf-8")
        command += [str(Path(form).resolve()), str(bag.resolve())]
    status, text = run_wine(wine, args.prefix, command, 600)
    print(text.strip())
    if status != 0 or "total:" not in text:
        print(f"the server's checks failed (exit status {status})")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
