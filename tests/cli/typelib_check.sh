#!/usr/bin/env bash
# Compiles the type library's IDL with widl into a .tlb and a C header: widl must print nothing
# (one known line aside, see below), the library must not be empty, and the header must name
# every class and every enumeration constant the IDL declares.
# Usage: typelib_check.sh IDL OUTDIR. Exits 77 (skipped) without widl or stdole2.tlb.
set -euo pipefail
idl=$1
out=$2
widl=${WIDL:-$(command -v x86_64-w64-mingw32-widl || true)}
if [ -z "$widl" ]; then
    echo "widl not found (package mingw-w64-tools): skipped"
    exit 77
fi
# The library imports stdole2.tlb; Wine ships one.
stdole=""
for dir in /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib/wine/x86_64-windows \
           /usr/lib64/wine/x86_64-windows /opt/wine-stable/lib/wine/x86_64-windows; do
    if [ -f "$dir/stdole2.tlb" ]; then stdole=$dir; break; fi
done
if [ -z "$stdole" ]; then
    echo "stdole2.tlb not found (package wine64): skipped"
    exit 77
fi

rm -rf "$out"
mkdir -p "$out"
tlb=$out/korvex_tools.tlb
header=$out/korvex_tools.h
if ! "$widl" -t -L "$stdole" -o "$tlb" "$idl" >"$out/widl.log" 2>&1 ||
   ! "$widl" -h -H "$header" "$idl" >>"$out/widl.log" 2>&1; then
    cat "$out/widl.log"
    echo "FAIL: widl refused $idl"
    exit 1
fi
# widl 7 reports stdole's own library identifier twice when one library refers to more than one
# of its types (IDispatch and IFontDisp); the import table it writes is right, so that line is
# not ours. Anything else it prints is.
if grep -v -x 'warning: duplicate uuid {00020430-0000-0000-c000-000000000046}' "$out/widl.log"; then
    echo "FAIL: widl printed the lines above"
    exit 1
fi
[ -s "$tlb" ] || { echo "FAIL: $tlb is empty"; exit 1; }
head -c 4 "$tlb" | grep -q MSFT || { echo "FAIL: $tlb is not an MSFT type library"; exit 1; }

missing=0
classes=$(sed -n 's/^ *coclass \([A-Za-z0-9_]*\) {.*/\1/p' "$idl")
[ -n "$classes" ] || { echo "FAIL: no coclass in $idl"; exit 1; }
for class in $classes; do
    grep -q "CLSID_$class\b" "$header" || { echo "FAIL: class $class missing from the header"; missing=1; }
    for iface in "_$class" "__$class"; do
        grep -q "DIID_$iface\b" "$header" || { echo "FAIL: $iface missing from the header"; missing=1; }
    done
done
# Enumeration constants: "        name = value," lines inside the library.
constants=$(sed -n 's/^        \([A-Za-z_][A-Za-z0-9_]*\) = -\{0,1\}[0-9][0-9]*,\{0,1\}$/\1/p' "$idl" | sort -u)
[ -n "$constants" ] || { echo "FAIL: no enumeration constant in $idl"; exit 1; }
for constant in $constants; do
    grep -q "\b$constant = " "$header" || { echo "FAIL: constant $constant missing from the header"; missing=1; }
done
[ $missing -eq 0 ] || exit 1
echo "typelib: $(echo $classes | wc -w) classes, $(echo $constants | wc -w) constants, $(stat -c %s "$tlb") bytes"
