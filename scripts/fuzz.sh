#!/usr/bin/env bash
# Builds the libFuzzer targets (preset fuzz: clang, ASan + UBSan) and runs every one of them,
# fuzz/<name>_fuzz.cpp, for SECONDS each (60 by default) on a scratch copy of its seeds in
# fuzz/corpus/<name>/. Fails on the first crash, hang (10 s), memory blow-up (1 GB) or leak and
# prints the input that reproduces it.
#
#   bash scripts/fuzz.sh [SECONDS]       # e.g. 3600 for an hour a target
#   KORVEX_FUZZ_KEEP=1 bash scripts/fuzz.sh 600   # keeps the grown corpora in build/fuzz/corpus
#                                                # and starts from them the next time
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
jobs=$(nproc)

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$jobs" --target fuzz_targets

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
findings=build/fuzz/findings
mkdir -p "$findings"

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:symbolize=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

failed=0
for source in fuzz/*_fuzz.cpp; do
    name=$(basename "$source" _fuzz.cpp)
    target=build/fuzz/bin/${name}_fuzz
    corpus=$scratch/$name
    mkdir -p "$corpus" "$findings/$name"
    if [ -d "fuzz/corpus/$name" ]; then cp -r "fuzz/corpus/$name/." "$corpus/"; fi
    if [ -n "${KORVEX_FUZZ_KEEP:-}" ] && [ -d "build/fuzz/corpus/$name" ]; then
        cp -r "build/fuzz/corpus/$name/." "$corpus/"
    fi
    touch "$scratch/$name.start"
    echo "== $name: $seconds s on $(find "$corpus" -type f | wc -l) seeds"
    log=$findings/$name/log.txt
    status=0
    "$target" -max_total_time="$seconds" -rss_limit_mb=1024 -timeout=10 -print_final_stats=1 \
        -artifact_prefix="$findings/$name/" "$corpus" >"$log" 2>&1 || status=$?
    reproducers=$(find "$findings/$name" -maxdepth 1 -type f \
        \( -name 'crash-*' -o -name 'timeout-*' -o -name 'oom-*' -o -name 'leak-*' \) -newer "$scratch/$name.start")
    if [ "$status" -ne 0 ] || [ -n "$reproducers" ]; then
        failed=1
        grep -E 'ERROR|SUMMARY|#0 |#1 |#2 |#3 |#4 ' "$log" | head -n 20 || true
        echo "FAILED: $name (exit $status), log $log"
        for file in $reproducers; do
            echo "  reproduce with: $target $file"
        done
    else
        grep -E '^stat::number_of_executed_units|^Done' "$log" | tr '\n' ' ' || true
        echo
    fi
    if [ -n "${KORVEX_FUZZ_KEEP:-}" ]; then
        mkdir -p "build/fuzz/corpus/$name"
        cp -r "$corpus/." "build/fuzz/corpus/$name/"
    fi
done
exit "$failed"
