#!/usr/bin/env python3
"""Loads the widl-built type library with OLE Automation under Wine and checks that it says what
the IDL says: every class a control with its default and event interface, every member at its
dispatch identifier with its access and type, colours, fonts and pictures as stdole's types (the
ones a property browser offers pickers for), event arguments by reference, every enumeration
constant with its value.

Usage: typelib_wine.py IDL TLB DUMPER_SOURCE WORKDIR. Exits 77 (skipped) without Wine or MinGW."""

import re
import shutil
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from wine import MINGW_CXX, SKIP, find_wine, wine_env  # noqa: E402

# Automation's variant types of the IDL's base types.
VT = {"short": "vt2", "long": "vt3", "float": "vt4", "double": "vt5", "BSTR": "vt8",
      "VARIANT_BOOL": "vt11", "VARIANT": "vt12", "void": "vt24", "IDispatch*": "vt9"}
STDOLE = {"OLE_COLOR": "stdole.OLE_COLOR", "IFontDisp*": "stdole.IFontDisp*",
          "IPictureDisp*": "stdole.IPictureDisp*"}


def type_text(idl_type, library):
    idl_type = idl_type.strip()
    if idl_type in STDOLE:
        return STDOLE[idl_type]
    if idl_type.endswith("*") and idl_type[:-1] in VT:
        return VT[idl_type[:-1]] + "*"
    if idl_type.endswith("*") and idl_type[:-1] not in VT:
        return f"{library}.{idl_type[:-1]}*"
    return VT.get(idl_type, f"{library}.{idl_type}")


def expected_lines(idl):
    """The dump's lines the IDL implies."""
    library = re.search(r"^library (\w+)", idl, re.M).group(1)
    lines = []
    kinds = {"propget": "get", "propput": "put", "propputref": "putref", None: "method"}
    for block in re.finditer(r"dispinterface (\w+) \{\n(.*?)\n    \};", idl, re.S):
        iface, body = block.group(1), block.group(2)
        for m in re.finditer(r"\[id\((-?\d+)\)(, hidden)?(?:, (propget|propputref|propput))?\] "
                             r"(.+?) (\w+)\((.*)\);", body):
            memid, hidden, kind, result, name, params = m.groups()
            value = result
            if kind in ("propput", "propputref"):
                value = re.match(r"\[in\] (.+) \w+$", params).group(1)
            lines.append(f"member {iface} {name} {memid} {kinds[kind]} "
                         f"{type_text(value, library)}{' hidden' if hidden else ''}")
            if kind is None and params:
                for index, param in enumerate(params.split(", [")):
                    attrs, ptype = re.match(r"\[?(.*?)\] (.+) \w+$", param).groups()
                    way = "byref" if "out" in attrs else "byval"
                    lines.append(f"param {iface} {name} {index} {way} {type_text(ptype, library)}")
    for block in re.finditer(r"coclass (\w+) \{", idl):
        name = block.group(1)
        lines += [f"coclass {name} control", f"implements {name} _{name} default",
                  f"implements {name} __{name} default,source"]
    for block in re.finditer(r"enum (\w+) \{\n(.*?)\n    \}", idl, re.S):
        for constant, value in re.findall(r"(\w+) = (-?\d+)", block.group(2)):
            lines.append(f"enum {block.group(1)} {constant} {value}")
    return lines


def main():
    idl_path, tlb, source, work = (Path(a).resolve() for a in sys.argv[1:5])
    wine = find_wine()
    if wine is None or shutil.which(MINGW_CXX) is None:
        print("SKIPPED: Wine or MinGW-w64 not installed")
        return SKIP
    if not tlb.exists():
        print(f"SKIPPED: {tlb} not built (cli.typelib builds it)")
        return SKIP
    work.mkdir(parents=True, exist_ok=True)
    dumper = work / "typelib_dump.exe"
    if not dumper.exists() or dumper.stat().st_mtime < source.stat().st_mtime:
        subprocess.run([MINGW_CXX, "-O1", "-municode", "-static", "-o", str(dumper), str(source),
                        "-loleaut32", "-lole32", "-luuid"], check=True)
    env = wine_env(work / "wineprefix")
    run = subprocess.run([wine, str(dumper), str(tlb)], env=env, capture_output=True, text=True,
                         timeout=300, check=False)
    (work / "dump.txt").write_text(run.stdout)
    if run.returncode != 0:
        print(run.stdout, run.stderr)
        print(f"FAIL: the type library does not load ({run.returncode})")
        return 1

    dumped = set(run.stdout.splitlines())
    expected = expected_lines(idl_path.read_text())
    missing = [line for line in expected if line not in dumped]
    for line in missing:
        print(f"FAIL: expected in the loaded library: {line}")
    extra = sorted(line for line in dumped if line.startswith("member") and line not in expected)
    for line in extra:
        print(f"FAIL: the loaded library has a member the IDL does not declare: {line}")
    if missing or extra or not expected:
        return 1
    print(f"typelib under Wine: {len(expected)} facts checked ({work / 'dump.txt'})")
    return 0


if __name__ == "__main__":
    sys.exit(main())
