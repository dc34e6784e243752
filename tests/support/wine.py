"""Running Windows programs under Wine for the tests: the loader, a prefix's environment, its
server, a program's run with its output in a file. Shared by the GDI oracle, the type library
check and the Windows library's tests."""

import os
import shutil
import subprocess
import tempfile
from pathlib import Path

SKIP = 77
MINGW_CXX = "x86_64-w64-mingw32-g++"


def find_wine():
    """Debian's wine64 keeps its loader out of PATH."""
    override = os.environ.get("KORVEX_WINE")
    if override:
        return override if Path(override).exists() else None
    for candidate in ("/usr/lib/wine/wine64", "/usr/lib/x86_64-linux-gnu/wine/wine64"):
        if Path(candidate).exists():
            return candidate
    return shutil.which("wine64") or shutil.which("wine")


def wine_env(prefix):
    env = dict(os.environ)
    env["WINEPREFIX"] = str(Path(prefix).resolve())  # Wine insists on an absolute path
    env["WINEDEBUG"] = "-all"
    # No Mono or Gecko installers: they would ask for a download and a display.
    env["WINEDLLOVERRIDES"] = "mscoree,mshtml="
    env.pop("DISPLAY", None)
    return env


def wineserver(wine, prefix, option):
    server = Path(wine).with_name("wineserver")
    command = [str(server)] if server.exists() else [shutil.which("wineserver") or "wineserver"]
    subprocess.run(command + [option], env=wine_env(prefix), stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=False)


def stop_wineserver(wine, prefix):
    wineserver(wine, prefix, "-k")


def use_null_display(wine, prefix):
    """Windows need a display driver; Wine's null driver needs no X server, so windows work
    headless (created, sized, painted through WM_PRINT) in a prefix set up this way."""
    command = [wine, "reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null",
               "/f"]
    result = subprocess.run(command, env=wine_env(prefix), stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL, check=False)
    return result.returncode == 0


def run(command, env=None, timeout=120):
    """(exit status, None after the timeout; the output and errors as text with "\\n" line ends).
    Output through a file, not a pipe: Wine's helper processes inherit the descriptors and
    outlive the program, so reading a pipe to its end would wait for them."""
    with tempfile.TemporaryFile(mode="w+b") as output:
        try:
            status = subprocess.run(command, env=env, check=False, stdout=output,
                                    stderr=subprocess.STDOUT, timeout=timeout).returncode
        except subprocess.TimeoutExpired:
            status = None
        output.seek(0)
        text = output.read().decode("utf-8", "replace")
        return status, text.replace("\r\n", "\n").replace("\r", "\n")


def run_wine(wine, prefix, program, *args, timeout=120):
    """A Windows program in the prefix, as run() runs it."""
    return run([wine, str(program), *map(str, args)], env=wine_env(prefix), timeout=timeout)


def windows_path(path):
    """Wine shows the build machine's root as drive Z:."""
    return "Z:" + str(Path(path).resolve()).replace("/", "\\")
