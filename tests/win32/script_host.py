#!/usr/bin/env python3
"""korvex_tools.dll from Wine's script host: VBScript files run by `cscript //nologo`.

  script_host.py --mingw DIR --prefix DIR --scripts DIR --example FILE --out DIR

First stock.vbs checks the host on an object Wine provides (Scripting.Dictionary). Then the DLL
is registered (per user with `regsvr32 /n /i:user`, checked in the registry, and per machine for
Wine's COM, which reads no user classes: see hosts.registered) and controls.vbs (creation by both ProgIDs,
properties, numbered errors, refused values changing nothing), events.vbs (WScript.ConnectObject)
and the example examples/windows_button.vbs run; after unregistering, a script must no longer be
able to create a control (429). Each script prints "ok ..." / "FAIL ..." lines and a closing
line; a script that stops early (cscript reports a script error as success) is a failure.

Exit status 0 all passed, 1 a failure, 77 without Wine or the DLL.
"""

import argparse
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from hosts import (find_dll, find_wine, registered, run_wine, skip, stop_wineserver,  # noqa: E402
                   windows_path)


def cscript(wine, prefix, script):
    status, text = run_wine(wine, prefix, "cscript", "//nologo", windows_path(script), timeout=120)
    return status, text.replace("\r\n", "\n").rstrip("\n").split("\n") if text.strip() else []


def checked(name, lines, closing):
    """Prints the script's checks; passes when it reached its closing line without a FAIL."""
    oks = [line for line in lines if line.startswith("ok ")]
    fails = [line for line in lines if line.startswith("FAIL")]
    notes = [line for line in lines if line.startswith("note ")]
    for line in fails + notes:
        print(f"  {name}: {line}")
    finished = any(re.fullmatch(closing, line) for line in lines)
    if not finished:
        print(f"  {name}: stopped before its end; last lines:")
        for line in lines[-5:]:
            print(f"    {line}")
    print(f"{name}: {len(oks)} checks passed, {len(fails)} failed, {len(notes)} notes"
          + ("" if finished else ", did not finish"))
    return finished and not fails, len(oks), notes


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--mingw", required=True)
    parser.add_argument("--prefix", required=True)
    parser.add_argument("--scripts", required=True)
    parser.add_argument("--example", required=True)
    parser.add_argument("--out", required=True)
    args = parser.parse_args()

    wine = find_wine()
    if wine is None:
        return skip("wine not found")
    prefix, scripts, out = Path(args.prefix), Path(args.scripts), Path(args.out)
    out.mkdir(parents=True, exist_ok=True)
    try:
        _, lines = cscript(wine, prefix, scripts / "stock.vbs")
        ok, _, _ = checked("stock.vbs (Scripting.Dictionary)", lines, r"checks done failures 0")
        if not ok:
            print("Wine's script host failed on its own object")
            return 1
        dll = find_dll(args.mingw)
        if dll is None:
            return skip(f"no korvex_tools.dll in {args.mingw}")

        passed, total, notes = True, 0, []
        with registered(wine, prefix, dll, out):
            _, lines = cscript(wine, prefix, scripts / "controls.vbs")
            (out / "controls.txt").write_text("\n".join(lines) + "\n")
            ok, count, _ = checked("controls.vbs", lines, r"checks \d+ failures 0")
            passed &= ok
            total += count

            _, lines = cscript(wine, prefix, scripts / "events.vbs")
            (out / "events.txt").write_text("\n".join(lines) + "\n")
            ok, count, found = checked("events.vbs", lines, r"checks done")
            passed &= ok
            total += count
            notes += found

            _, lines = cscript(wine, prefix, args.example)
            (out / "windows_button.txt").write_text("\n".join(lines) + "\n")
            expected = [r"Caption: Links, OptionMode: 2",
                        r"MousePointer = 5000: error 380 \(.+\), still 0",
                        r"(Group: .*|This script host cannot connect events \(error 445\))",
                        r"Value: True"]
            missing = [e for e in expected if not any(re.fullmatch(e, line) for line in lines)]
            for e in missing:
                print(f"  example: no line matching {e}")
            print(f"example windows_button.vbs: {len(expected) - len(missing)} of {len(expected)} lines as expected")
            passed &= not missing
            total += len(expected) - len(missing)

        # Unregistered again: the ProgIDs are gone for this user.
        probe = out / "unregistered.vbs"
        probe.write_text('On Error Resume Next\nSet b = CreateObject("Korvex_Tools.Button")\n'
                         'WScript.Echo "after unregistering: error " & Err.Number\n')
        _, lines = cscript(wine, prefix, probe)
        gone = "after unregistering: error 429" in lines
        print(f"unregistered: CreateObject gives {'429' if gone else lines}")
        passed &= gone
        total += gone

        print(f"script_host: {total} checks passed in Wine's cscript"
              + (f"; the host could not: {'; '.join(n[5:] for n in notes)}" if notes else ""))
        return 0 if passed else 1
    finally:
        stop_wineserver(wine, prefix)


if __name__ == "__main__":
    sys.exit(main())
