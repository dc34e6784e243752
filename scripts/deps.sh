#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the gallery need (only the missing ones).
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          nlohmann-json3-dev libfreetype-dev libfontconfig-dev libpng-dev libpixman-1-dev
          fonts-liberation fonts-dejavu-core
          # korvex show's window; the test runs it on a virtual X server and clicks with xdotool,
          # and scripts/show_screenshot.sh takes the README's picture with ImageMagick's import.
          libsdl2-dev xvfb xdotool imagemagick)
# The reference runner draws with a real GDI: a MinGW-w64 build run under Wine.
# widl (mingw-w64-tools) compiles the type library's IDL; its stdole2.tlb import comes with Wine.
oracle_packages=(wine64 g++-mingw-w64-x86-64 mingw-w64-tools)
# The 32-bit Windows build (preset mingw32) and its check under Wine (win32.layers_i686).
i686_packages=(g++-mingw-w64-i686)
# The fuzz targets: clang with libFuzzer and the sanitizer runtimes.
fuzz_packages=(clang libclang-rt-14-dev)

missing() {
    local out=()
    for p in "$@"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || out+=("$p")
    done
    echo "${out[@]:-}"
}

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

# Debian's wine64 runs 32-bit programs in Wine's experimental WoW64 mode once it finds Wine's
# 32-bit DLLs. Installing wine32 would need the i386 architecture and its libraries; the DLLs
# alone come from libwine:i386 of the same version, fetched with apt lists of its own so that
# dpkg's architectures and the system's apt lists stay as they are.
wine_i386=/usr/local/lib/korvex/wine-i386
fetch_wine_i386() {
    [ ! -f "$wine_i386/i386-windows/ntdll.dll" ] || return 0
    local version tmp
    version=$(dpkg-query -W -f='${Version}' libwine:amd64)
    tmp=$(mktemp -d)
    mkdir -p "$tmp/lists/partial" "$tmp/archives/partial" "$tmp/x"
    local apt_options=(-o "Dir::State::Lists=$tmp/lists" -o "Dir::Cache::archives=$tmp/archives"
                       -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache="
                       -o "APT::Architectures::=i386" -o "APT::Sandbox::User=root")
    # Only the main suite is needed; an index of another suite that fails does not matter.
    as_root apt-get "${apt_options[@]}" update -qq >/dev/null 2>&1 || true
    (cd "$tmp" && as_root apt-get "${apt_options[@]}" download -qq "libwine:i386=$version")
    dpkg-deb --fsys-tarfile "$tmp"/libwine_*_i386.deb |
        tar -x -C "$tmp/x" ./usr/lib/i386-linux-gnu/wine/i386-windows
    as_root mkdir -p "$wine_i386"
    as_root mv "$tmp/x/usr/lib/i386-linux-gnu/wine/i386-windows" "$wine_i386/"
    as_root rm -rf "$tmp"
}

need=$(missing "${packages[@]}")
need_oracle=""
with_i686=""
for option in "$@"; do
    case "$option" in
        --with-oracle) need_oracle="$need_oracle $(missing "${oracle_packages[@]}")" ;;
        --with-fuzz) need="$need $(missing "${fuzz_packages[@]}")" ;;
        --with-i686)
            with_i686=1
            need_oracle="$need_oracle $(missing "${oracle_packages[@]}" "${i686_packages[@]}")" ;;
        *) echo "usage: deps.sh [--with-oracle] [--with-fuzz] [--with-i686]" >&2; exit 2 ;;
    esac
done
need=$(echo $need)
need_oracle=$(echo $need_oracle)
if [ -n "$need$need_oracle" ]; then
    as_root apt-get update -qq
    export DEBIAN_FRONTEND=noninteractive
    [ -z "$need" ] || as_root apt-get install -y -qq $need
    [ -z "$need_oracle" ] || as_root apt-get install -y -qq --no-install-recommends $need_oracle
fi
[ -z "$with_i686" ] || fetch_wine_i386
