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

need=$(missing "${packages[@]}")
need_oracle=""
for option in "$@"; do
    case "$option" in
        --with-oracle) need_oracle="$need_oracle $(missing "${oracle_packages[@]}")" ;;
        --with-fuzz) need="$need $(missing "${fuzz_packages[@]}")" ;;
        *) echo "usage: deps.sh [--with-oracle] [--with-fuzz]" >&2; exit 2 ;;
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
