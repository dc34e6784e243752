"""What the hosts' tests share: finding korvex_tools.dll in the MinGW tree, registering it per user
in the Wine prefix (and always removing it again), and the native korvex tool's rendering of a
one-control form. Running programs is tests/support/wine.py's."""

import json
import re
import sys
from contextlib import contextmanager
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "support"))
from wine import SKIP, find_wine, run, run_wine, stop_wineserver, wine_env, windows_path  # noqa: E402,F401

TWIPS_PER_PIXEL = 15


def skip(message):
    print(f"SKIPPED: {message}")
    return SKIP


def find_dll(mingw):
    found = sorted(Path(mingw).glob("**/korvex_tools.dll"))
    return found[0] if found else None


PUBLIC_CLASSES = ("Button", "Frames", "Hyperlink", "Label3D", "Line3D", "Icons")


def registry_keys(wine, prefix, root, out_dir):
    """The key names under a registry key, through `reg export` (which writes UTF-16)."""
    exported = Path(out_dir) / "exported.reg"
    exported.unlink(missing_ok=True)
    run_wine(wine, prefix, "reg", "export", root, windows_path(exported), "/y")
    if not exported.exists():
        return set()
    text = exported.read_bytes().decode("utf-16", errors="replace")
    return {line[1:-1].lower() for line in text.splitlines() if line.startswith("[") and line.endswith("]")}


def progid_keys(root):
    return {f"{root}\\korvex_tools.{name.lower()}{suffix}" for name in PUBLIC_CLASSES for suffix in ("", ".1")}


@contextmanager
def registered(wine, prefix, dll, out_dir):
    """korvex_tools.dll registered for the current user, the way INSTALL.txt tells a user without
    administrator rights: the ProgIDs must appear under HKCU\\Software\\Classes and leave it again
    when unregistered. Wine's COM reads classes from HKEY_LOCAL_MACHINE only (it does not merge
    the user's classes into HKEY_CLASSES_ROOT as Windows does), so under Wine the hosts then use a
    per-machine registration. Unregistered on the way out, whatever happened."""
    user_root = "HKEY_CURRENT_USER\\Software\\Classes"
    # Whatever an interrupted earlier run left registered goes first.
    run_wine(wine, prefix, "regsvr32", "/u", windows_path(dll))
    run_wine(wine, prefix, "regsvr32", "/u", "/n", "/i:user", windows_path(dll))
    status, text = run_wine(wine, prefix, "regsvr32", "/n", "/i:user", windows_path(dll))
    if status != 0:
        raise RuntimeError(f"regsvr32 /n /i:user failed with status {status}:\n{text}")
    user = registry_keys(wine, prefix, user_root, out_dir)
    wanted = {k.lower() for k in progid_keys(user_root)}
    missing = sorted(wanted - user)
    merged = bool(registry_keys(wine, prefix, "HKEY_CLASSES_ROOT\\Korvex_Tools.Button", out_dir))
    machine = False
    try:
        if missing:
            raise RuntimeError(f"regsvr32 /n /i:user wrote no {', '.join(missing)}")
        if not merged:
            run_wine(wine, prefix, "regsvr32", "/u", "/n", "/i:user", windows_path(dll))
            left = wanted & registry_keys(wine, prefix, user_root, out_dir)
            if left:
                raise RuntimeError(f"regsvr32 /u /n /i:user left {', '.join(sorted(left))}")
            status, text = run_wine(wine, prefix, "regsvr32", windows_path(dll))
            if status != 0:
                raise RuntimeError(f"regsvr32 failed with status {status}:\n{text}")
            machine = True
            print(f"registration: per user, {len(wanted)} ProgIDs written under HKCU\\Software\\Classes and "
                  "removed again; Wine's COM reads HKLM only, so the hosts use a per-machine registration")
        else:
            print(f"registration: per user, {len(wanted)} ProgIDs, seen through HKEY_CLASSES_ROOT")
        yield
    finally:
        if machine:
            run_wine(wine, prefix, "regsvr32", "/u", windows_path(dll))
        else:
            run_wine(wine, prefix, "regsvr32", "/u", "/n", "/i:user", windows_path(dll))


# The registry's names of the system colours, in COLOR_SCROLLBAR .. COLOR_MENUBAR order.
SYS_COLOR_NAMES = (
    "Scrollbar", "Background", "ActiveTitle", "InactiveTitle", "Menu", "Window", "WindowFrame", "MenuText",
    "WindowText", "TitleText", "ActiveBorder", "InactiveBorder", "AppWorkSpace", "Hilight", "HilightText",
    "ButtonFace", "ButtonShadow", "GrayText", "ButtonText", "InactiveTitleText", "ButtonHilight",
    "ButtonDkShadow", "ButtonLight", "InfoText", "InfoWindow", "ButtonAlternateFace", "HotTrackingColor",
    "GradientActiveTitle", "GradientInactiveTitle", "MenuHilight", "MenuBar")


def simulated_sys_colours():
    """The simulated platform's system colours (COLORREFs), read from its source."""
    source = Path(__file__).resolve().parents[2] / "src" / "platform" / "sys_colors.cpp"
    table = source.read_text().split("{", 2)[2].split("}", 1)[0]
    colours = [int(word, 16) for word in re.findall(r"0x[0-9A-Fa-f]+", table)]
    if len(colours) != len(SYS_COLOR_NAMES):
        raise RuntimeError(f"{source}: {len(colours)} system colours, {len(SYS_COLOR_NAMES)} expected")
    return colours


@contextmanager
def simulated_colours(wine, prefix, out_dir):
    """The prefix's system colours set to the simulated platform's for the programs run inside,
    so that a control's system colours paint the same on both sides; the prefix's own colours
    come back on the way out."""
    key = "HKEY_CURRENT_USER\\Control Panel\\Colors"
    saved = Path(out_dir) / "colours.saved.reg"
    saved.unlink(missing_ok=True)
    run_wine(wine, prefix, "reg", "export", key, windows_path(saved), "/y")
    lines = ["Windows Registry Editor Version 5.00", "", f"[{key}]"]
    for name, c in zip(SYS_COLOR_NAMES, simulated_sys_colours()):
        lines.append(f'"{name}"="{c & 0xFF} {(c >> 8) & 0xFF} {(c >> 16) & 0xFF}"')
    wanted = Path(out_dir) / "colours.reg"
    wanted.write_text("\r\n".join(lines) + "\r\n", encoding="utf-16")
    status, text = run_wine(wine, prefix, "reg", "import", windows_path(wanted))
    if status != 0:
        raise RuntimeError(f"reg import of the system colours failed ({status}):\n{text}")
    try:
        yield
    finally:
        run_wine(wine, prefix, "reg", "delete", key, "/f")
        if saved.exists():
            run_wine(wine, prefix, "reg", "import", windows_path(saved))


def one_control_form(progid, width, height, properties, name="C"):
    """A form holding one control at the top-left corner of its client area, sized in pixels."""
    return {
        "Form": {"Name": "F", "Caption": "F", "Width": (width + 40) * TWIPS_PER_PIXEL,
                 "Height": (height + 60) * TWIPS_PER_PIXEL},
        "Controls": [{"ProgID": progid, "Name": name, "Left": 0, "Top": 0,
                      "Width": width * TWIPS_PER_PIXEL, "Height": height * TWIPS_PER_PIXEL,
                      "TabIndex": 0, "Properties": properties}],
    }


def script_value(value):
    """A value as the korvex run scripts and the ATL host's case files write it."""
    if isinstance(value, bool):
        return "True" if value else "False"
    if isinstance(value, str):
        return '"' + value.replace('"', '""') + '"'
    if isinstance(value, int) and value > 0x7FFFFFFF:
        return f"&H{value:08X}&"
    return str(value)


def native_snapshot(korvex, out_dir, stem, progid, width, height, properties):
    """The simulated backend's picture of the control window, through `korvex run`'s snapshot.
    The properties are in the control's bag and set again by the script, as the ATL host sets
    them on a new control: the properties a bag does not restore end up the same."""
    out_dir = Path(out_dir)
    form = out_dir / f"{stem}.form.json"
    script = out_dir / f"{stem}.script.txt"
    form.write_text(json.dumps(one_control_form(progid, width, height, properties), indent=1))
    sets = "".join(f"set C.{key} {script_value(value)}\n" for key, value in properties.items())
    script.write_text(sets + f"snapshot {stem}.sim.png C\n")
    status, text = run([str(korvex), "run", str(form), "--script", str(script), "--out", str(out_dir)])
    if status != 0 or "error" in text:
        raise RuntimeError(f"korvex run {form} failed ({status}):\n{text}")
    return out_dir / f"{stem}.sim.png"
