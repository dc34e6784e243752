#!/usr/bin/env bash
# Takes the README's picture of korvex show (docs/show.png): examples/buttons.json in its window
# on a virtual X server, a group button latched and the pointer resting on "Senden".
#   bash scripts/show_screenshot.sh [KORVEX]     (default build/default/bin/korvex)
set -euo pipefail
cd "$(dirname "$0")/.."
korvex=${1:-build/default/bin/korvex}
out=docs/show.png

work=$(mktemp -d)
xvfb=""
show=""
cleanup() {
    # korvex first, so it does not see its display vanish.
    [ -n "$show" ] && kill "$show" 2>/dev/null && wait "$show" 2>/dev/null
    [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

wait_for() {
    for _ in $(seq 200); do
        "$@" && return 0
        sleep 0.05
    done
    echo "timed out waiting for: $*" >&2
    return 1
}

Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
xvfb=$!
wait_for test -s "$work/display"
export DISPLAY=":$(head -n 1 "$work/display")"

"$korvex" show examples/buttons.json --for 60 >"$work/events.txt" &
show=$!
find_window() { window=$(xdotool search --name '^korvex - buttons\.json$' | head -n 1) && [ -n "$window" ]; }
wait_for find_window

# Latch "Mitte" (its centre: 2160 + 900, 1200 + 300 twips), then rest on "Senden" (240 + 900,
# 240 + 300), 15 twips to the pixel.
xdotool mousemove --window "$window" 204 100 click 1
wait_for grep -q '^event Mitte\.Click' "$work/events.txt"
xdotool mousemove --window "$window" 76 36
# The hover look comes with the button's 50 ms poll; give it a few rounds.
sleep 0.5
import -window "$window" "$out"
echo "wrote $out"
