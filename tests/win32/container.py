#!/usr/bin/env python3
"""korvex_tools.dll in a container of our own (tests/win32/container), under Wine.

  container.py --korvex EXE --container EXE --mingw DIR --prefix DIR --out DIR

The container prints its own checks (ok/FAIL lines: design and run mode through the UserMode
ambient, the bag, stream and storage round trips, IQuickActivate, access
keys, the about box); this driver adds the comparisons with the native korvex tool:
  - what each control saves into the container's property bag after loading the case's
    properties must be exactly what `korvex bag` prints for the same form file entry: the same
    keys in the same order, the same values and kinds;
  - the events and property changes that mouse and key messages to a control's windows raise,
    and those of its access key (OnMnemonic), must be the lines `korvex run` prints for the same
    steps on the simulated platform;
  - a control's ShowAboutBox opens a box where the simulated run's does, and none where it does
    not.

Exit status 0 all passed, 1 a failure, 77 without Wine, the container program or the DLL.
"""

import argparse
import json
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from hosts import (TWIPS_PER_PIXEL, find_dll, find_wine, registered, run, run_wine, skip,  # noqa: E402
                   stop_wineserver, windows_path)

# One entry per public control, in the form file's encoding.
BAGS = [
    {"Name": "Button", "ProgID": "Korvex_Tools.Button",
     "Properties": {"Caption": "Senden", "OptionMode": 2, "ButtonColor": 12632319, "ToolTipText": "Schicken"}},
    {"Name": "Label3D", "ProgID": "Korvex_Tools.Label3D",
     "Properties": {"Caption": "Titel", "Shadow": False, "TextColor": 8388608, "FontName": "Arial",
                    "FontBold": {"Integer": 1}, "FontSize": {"Integer": 12}}},
    {"Name": "Frames", "ProgID": "Korvex_Tools.Frames",
     "Properties": {"Caption": "Gruppe", "BorderStyle": {"Integer": 3}, "Alignment": 1}},
    {"Name": "Hyperlink", "ProgID": "Korvex_Tools.Hyperlink",
     "Properties": {"Caption": "korvex", "Url": "about:blank", "LinkColor": 255}},
    {"Name": "Line3D", "ProgID": "Korvex_Tools.Line3D",
     "Properties": {"BorderWidth": {"Integer": 3}, "Orientation": {"Integer": 1}}},
    {"Name": "Icons", "ProgID": "Korvex_Tools.Icons", "Properties": {}},
]

# The container's input section: each control in run mode, a move and a left click at the point
# (pixels from its top-left corner), then "a" typed. TakesFocus (default True): whether UI
# activation gives the control the focus; a label without its focus rectangle takes none.
INPUT = [
    {"Name": "Button", "ProgID": "Korvex_Tools.Button", "Width": 120, "Height": 40, "Point": [10, 6],
     "Properties": {"Caption": "Senden", "ButtonShow": 18, "BorderStyle": 5}},
    {"Name": "Label3D", "ProgID": "Korvex_Tools.Label3D", "Width": 120, "Height": 60, "Point": [30, 40],
     "Properties": {"Caption": "Titel"}, "TakesFocus": False},
    {"Name": "Frames", "ProgID": "Korvex_Tools.Frames", "Width": 120, "Height": 60, "Point": [30, 40],
     "Properties": {"Caption": "Gruppe"}},
]
STOCK = "Shell.Explorer.2"


def form_of(controls):
    return {"Form": {"Name": "F", "Caption": "F", "Width": 12000, "Height": 9000}, "Controls": controls}


def native_bags(korvex, out):
    controls = []
    for i, entry in enumerate(BAGS):
        controls.append({"ProgID": entry["ProgID"], "Name": entry["Name"], "Left": 120, "Top": 120 + 700 * i,
                         "Width": 1500, "Height": 450, "TabIndex": i, "Properties": entry["Properties"]})
    form = out / "bags.form.json"
    form.write_text(json.dumps(form_of(controls), indent=1))
    status, text = run([str(korvex), "bag", str(form)])
    if status != 0:
        raise RuntimeError(f"korvex bag failed ({status}):\n{text}")
    return json.loads(text)


def one_control(entry, **changes):
    control = {"ProgID": entry["ProgID"], "Name": "C", "Left": 0, "Top": 0,
               "Width": entry.get("Width", 120) * TWIPS_PER_PIXEL,
               "Height": entry.get("Height", 40) * TWIPS_PER_PIXEL, "TabIndex": 0,
               "Properties": entry.get("Properties", {})}
    control.update(changes)
    return control


def native_input(korvex, out, entry, keys=True):
    """What the simulated run prints for the container's input steps on one control."""
    form, script = out / f"input_{entry['Name']}.form.json", out / "input.txt"
    form.write_text(json.dumps(form_of([one_control(entry)]), indent=1))
    x, y = entry["Point"]
    script.write_text(f"move C {x} {y}\ndown\nup\n" + ("focus C\ntype a\n" if keys else ""))
    status, text = run([str(korvex), "run", str(form), "--script", str(script), "--out", str(out)])
    if status != 0:
        raise RuntimeError(f"korvex run failed ({status}):\n{text}")
    return [line for line in text.splitlines() if line.startswith(("event ", "changed "))]


# Access keys: the caption's & letter, pressed with Alt (IOleControl::OnMnemonic in the container,
# "key alt" in the simulated run). ActsLikeLabel: the letter hands the focus on to the next
# control, which the control's OLEMISC_ACTSLIKELABEL leaves to the container.
MNEMONICS = [
    {"Name": "Button", "ProgID": "Korvex_Tools.Button", "Key": "S", "Properties": {"Caption": "&Senden"}},
    {"Name": "Label3D", "ProgID": "Korvex_Tools.Label3D", "Key": "T",
     "Properties": {"Caption": "&Titel", "FocusRect": True}},
    {"Name": "Label3DPlain", "ProgID": "Korvex_Tools.Label3D", "Key": "T", "Properties": {"Caption": "&Titel"},
     "ActsLikeLabel": True},
    {"Name": "Frames", "ProgID": "Korvex_Tools.Frames", "Key": "G", "Properties": {"Caption": "&Gruppe"},
     "ActsLikeLabel": True},
    {"Name": "Hyperlink", "ProgID": "Korvex_Tools.Hyperlink", "Key": "K", "Properties": {"Caption": "&korvex"}},
]


def native_mnemonic(korvex, out, entry):
    """What the simulated run raises for Alt and the letter, less the Alt key's own KeyDown and
    KeyUp (18), which reach the focused control there and are no part of OnMnemonic."""
    form, script = out / f"mnemonic_{entry['Name']}.form.json", out / "mnemonic.txt"
    form.write_text(json.dumps(form_of([one_control(entry)]), indent=1))
    script.write_text(f"key alt {entry['Key'].lower()}\n")
    status, text = run([str(korvex), "run", str(form), "--script", str(script), "--out", str(out)])
    if status != 0:
        raise RuntimeError(f"korvex run failed ({status}):\n{text}")
    return [line for line in text.splitlines() if line.startswith(("event ", "changed "))
            and not re.fullmatch(r"event C\.Key(Down|Up)\(18, \d\)", line)]


ABOUT_CLASSES = ("Hyperlink", "Line3D", "Button", "Label3D", "Icons")


def native_about(korvex, out, cls):
    """Whether the simulated run's ShowAboutBox opens a box: a modal box still open when the
    script ends is error 32000."""
    form, script = out / f"about_{cls}.form.json", out / "about.txt"
    form.write_text(json.dumps(form_of([one_control({"ProgID": f"Korvex_Tools.{cls}"})]), indent=1))
    script.write_text("call C.ShowAboutBox\n")
    _, text = run([str(korvex), "run", str(form), "--script", str(script), "--out", str(out)])
    return "error 32000" in text


# Wine's OLE font objects report the face and size they realise (a font without a name becomes
# the substitute face, 8 points become the 8.25 of an 11-pixel font), not the ones they were made
# with; so of a font in a bag only its style, weight and character set are compared.
FONT_REALISED = ("Name", "Size")


def same_bag(mine, theirs):
    """Whether two bags hold the same keys in the same order with the same values; the font
    fields Wine's font objects realise are noted, not compared."""
    if mine is None or list(mine) != list(theirs):
        return False, []
    notes = []
    for key, value in theirs.items():
        other = mine[key]
        if isinstance(value, dict) and "Font" in value and isinstance(other, dict) and "Font" in other:
            a, b = other["Font"], value["Font"]
            if any(a.get(f) != b.get(f) for f in set(a) | set(b) if f not in FONT_REALISED):
                return False, []
            notes += [f"{key}.{f} {a.get(f)!r} (korvex bag {b.get(f)!r})" for f in FONT_REALISED if a.get(f) != b.get(f)]
        elif other != value:
            return False, []
    return True, notes


def section(lines, name):
    """The event and change lines of one control's input steps (mouse and keys) in the
    container's output."""
    inside, found = False, []
    for line in lines:
        if line == f"input {name}: mouse":
            inside = True
        elif line.startswith(("input ", "section ", "mnemonic ", "quick ")) and \
                line != f"input {name}: keys":
            inside = False
        elif inside and line.startswith(("event ", "changed ")):
            found.append(line)
    return found


def following(lines, header):
    """The event and change lines right after a header line of the container's output."""
    found, inside = [], False
    for line in lines:
        if line == header:
            inside = True
        elif inside and line.startswith(("event ", "changed ")):
            found.append(line)
        elif inside and not line.startswith("FAIL event"):
            break
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("korvex", "container", "mingw", "prefix", "out"):
        parser.add_argument(f"--{name}", required=True)
    args = parser.parse_args()

    wine = find_wine()
    if wine is None:
        return skip("wine not found")
    program = Path(args.container)
    if not program.exists():
        return skip(f"{program} not built (the MinGW tree is made by gdi-oracle-setup)")
    prefix, out = Path(args.prefix), Path(args.out)
    out.mkdir(parents=True, exist_ok=True)
    # The site on a control Wine provides first, so a broken container shows as such.
    status, text = run_wine(wine, prefix, program, "--stock", STOCK, timeout=120)
    stop_wineserver(wine, prefix)
    print(text.rstrip())
    if status != 0:
        print(f"the container failed on Wine's own {STOCK}")
        return 1
    dll = find_dll(args.mingw)
    if dll is None:
        return skip(f"no korvex_tools.dll in {args.mingw}")
    cases, saved = out / "cases.json", out / "saved.json"
    cases.write_text(json.dumps({"bags": BAGS, "input": INPUT, "mnemonics": MNEMONICS}, indent=1))
    saved.unlink(missing_ok=True)
    try:
        with registered(wine, prefix, dll, out):
            status, text = run_wine(wine, prefix, program, windows_path(cases), windows_path(saved), timeout=180)
    finally:
        stop_wineserver(wine, prefix)
    lines = text.replace("\r\n", "\n").splitlines()
    print("\n".join(lines))
    # The container's own verdicts are its FAIL lines; any other status is a crash or a hang.
    failed = status not in (0, 1)
    if status is None:
        print("the container did not finish within 180 s")
    elif failed:
        print(f"the container ended with status {status}")
    fails = [line for line in lines if line.startswith("FAIL")]

    # The bags, against korvex bag.
    expected = native_bags(args.korvex, out)
    got = json.loads(saved.read_text()) if saved.exists() else {}
    equal = 0
    for entry in BAGS:
        name = entry["Name"]
        mine, theirs = got.get(name), expected.get(name)
        same, notes = same_bag(mine, theirs)
        if same:
            equal += 1
            print(f"  bag {name}: the same {len(theirs)} keys and values as korvex bag: {', '.join(theirs)}"
                  + (f"; as Wine's font realised it: {', '.join(notes)}" if notes else ""))
        else:
            failed = True
            print(f"  MISMATCH bag {name}:\n    container  {json.dumps(mine)}\n    korvex bag {json.dumps(theirs)}")

    # Input, against korvex run.
    inputs_equal, input_lines = 0, 0
    for entry in INPUT:
        native = native_input(args.korvex, out, entry)
        hosted = section(lines, entry["Name"])
        input_lines += len(native)
        if hosted == native:
            inputs_equal += 1
            print(f"  input {entry['Name']}: the {len(native)} events and changes equal the simulated run's")
        else:
            failed = True
            print(f"  MISMATCH input {entry['Name']}:\n    container:\n" + "".join(f"      {line}\n" for line in hosted)
                  + "    simulated run:\n" + "".join(f"      {line}\n" for line in native))
    # The same clicks on a control made through IQuickActivate.
    native = native_input(args.korvex, out, INPUT[0], keys=False)
    hosted = following(lines, f"quick {INPUT[0]['Name']}: mouse")
    quick_equal = hosted == native
    if quick_equal:
        print(f"  quick activation {INPUT[0]['Name']}: the {len(native)} events and changes of a click equal the "
              "simulated run's")
    else:
        failed = True
        print(f"  MISMATCH quick activation:\n    container: {hosted}\n    simulated run: {native}")

    # Access keys, against the simulated run.
    mnemonics_equal = 0
    for entry in MNEMONICS:
        native = native_mnemonic(args.korvex, out, entry)
        hosted = following(lines, f"mnemonic {entry['Name']}:")
        if hosted == native:
            mnemonics_equal += 1
            print(f"  mnemonic {entry['Name']} (Alt+{entry['Key']}): {len(native)} events and changes as in the "
                  "simulated run")
        else:
            failed = True
            print(f"  MISMATCH mnemonic {entry['Name']}:\n    container: {hosted}\n    simulated run: {native}")

    # The about box, against the simulated run.
    about_ok = 0
    for cls in ABOUT_CLASSES:
        opens = native_about(args.korvex, out, cls)
        seen = next((line for line in lines if line.startswith(f"about {cls}: ")), "")
        if seen and seen.split(": ", 1)[1].startswith("opened" if opens else "nothing"):
            about_ok += 1
        else:
            failed = True
            print(f"  MISMATCH about {cls}: the simulated run {'opens' if opens else 'opens no'} box; "
                  f"the container says {seen!r}")
    print(f"  about box: {about_ok} of {len(ABOUT_CLASSES)} classes open a box (or none) as in the simulated run")
    oks = sum(line.startswith("ok ") for line in lines)
    print(f"container: {oks} checks passed and {len(fails)} failed in the container, "
          f"{equal} of {len(BAGS)} bags as "
          f"korvex bag saves them, input on {inputs_equal} of {len(INPUT)} controls and access keys on "
          f"{mnemonics_equal} of {len(MNEMONICS)} as in the simulated run ({input_lines} input lines)")
    return 1 if failed or fails else 0


if __name__ == "__main__":
    sys.exit(main())
