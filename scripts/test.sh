#!/usr/bin/env bash
# Builds everything and runs the whole test suite twice: the optimised build (with the
# comparison against a real GDI under Wine) and the AddressSanitizer + UBSan build; then every
# fuzz target for a short while (scripts/fuzz.sh runs them longer).
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh --with-oracle --with-fuzz

jobs=$(nproc)
cmake --preset default
cmake --build --preset default -j "$jobs"
ctest --preset default -j "$jobs"

cmake --preset asan
cmake --build --preset asan -j "$jobs"
# The oracle compares pixels, not memory: it runs once, in the build above.
ctest --preset asan -j "$jobs" -LE 'gdi-oracle|package'

# A short fuzzing run of every target under ASan + UBSan: 30 s each on the seed corpora.
bash scripts/fuzz.sh "${KORVEX_FUZZ_SECONDS:-30}"
