#!/usr/bin/env bash
# Builds the Windows control library into dist/: korvex_tools.dll (x86-64, cross-built with
# MinGW-w64), its type library korvex_tools.tlb, INSTALL.txt and the sample script. Installs the
# Debian packages it needs (only the missing ones), as scripts/deps.sh does.
#
#   bash scripts/windows.sh           dist/ for 64-bit Windows
#   bash scripts/windows.sh --i686    also dist/i686/ (the DLL and type library for 32-bit hosts)
set -euo pipefail
cd "$(dirname "$0")/.."

i686=no
for option in "$@"; do
    case "$option" in
        --i686) i686=yes ;;
        *) echo "usage: windows.sh [--i686]" >&2; exit 2 ;;
    esac
done

# The cross compiler, widl for the type library (its stdole2.tlb import comes with Wine), the
# header-only JSON library the layers use.
packages=(cmake ninja-build g++-mingw-w64-x86-64 mingw-w64-tools nlohmann-json3-dev wine64)
[ "$i686" = no ] || packages+=(g++-mingw-w64-i686)

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
if [ "${#missing[@]}" -gt 0 ]; then
    as_root apt-get update -qq
    export DEBIAN_FRONTEND=noninteractive
    as_root apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

cmake --preset mingw
cmake --build --preset mingw --target korvex_tools -j "$(nproc)"

dll=$(find build/mingw -name korvex_tools.dll -print -quit)
tlb=$(find build/mingw -name korvex_tools.tlb -print -quit)
if [ -z "$dll" ] || [ -z "$tlb" ]; then
    echo "windows.sh: the build made no korvex_tools.dll or korvex_tools.tlb" >&2
    exit 1
fi
rm -rf dist
mkdir -p dist
cp "$dll" "$tlb" dist/
cp scripts/windows/INSTALL.txt dist/INSTALL.txt
cp examples/windows_button.vbs dist/
if [ "$i686" = yes ]; then
    cmake --preset mingw32
    cmake --build --preset mingw32 --target korvex_tools -j "$(nproc)"
    mkdir -p dist/i686
    # The DLL and its type library, compiled for 32-bit Windows.
    cp "$(find build/mingw32 -name korvex_tools.dll -print -quit)" \
       "$(find build/mingw32 -name korvex_tools.tlb -print -quit)" dist/i686/
fi
echo "dist/:"
ls -l dist
