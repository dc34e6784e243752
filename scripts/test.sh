#!/usr/bin/env bash
# Builds everything and runs the whole test suite twice: the optimised build (with the
# comparison against a real GDI under Wine) and the AddressSanitizer + UBSan build.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh --with-oracle

jobs=$(nproc)
cmake --preset default
cmake --build --preset default -j "$jobs"
ctest --preset default -j "$jobs"

cmake --preset asan
cmake --build --preset asan -j "$jobs"
# The oracle compares pixels, not memory: it runs once, in the build above.
ctest --preset asan -j "$jobs" -LE 'gdi-oracle|package'
