#!/usr/bin/env bash
# korvex show on a virtual X server, driven as a person would with xdotool: the window has the
# form's size times --scale, a click on a button and typed keys reach the form, and the event log
# appears on standard output while the window is still open. Exit status 77 (skipped) when the
# X tools are missing or korvex was built without its window.
#   show_window.sh KORVEX FORM.json OUTDIR
set -uo pipefail
korvex=$1
form=$2
out=$3

skip() {
    echo "skipped: $*"
    exit 77
}
fail() {
    echo "FAILED: $*"
    for f in "$out"/stderr.txt "$out"/events.txt; do
        [ -f "$f" ] && { echo "--- $f"; cat "$f"; }
    done
    exit 1
}

command -v Xvfb >/dev/null || skip "Xvfb is not installed (scripts/deps.sh installs it)"
command -v xdotool >/dev/null || skip "xdotool is not installed (scripts/deps.sh installs it)"

rm -rf "$out"
mkdir -p "$out"
events=$out/events.txt

xvfb=""
show=""
cleanup() {
    # korvex first, so it does not see its display vanish.
    [ -n "$show" ] && kill "$show" 2>/dev/null && wait "$show" 2>/dev/null
    [ -n "$xvfb" ] && kill "$xvfb" 2>/dev/null
    wait 2>/dev/null
}
trap cleanup EXIT

# Waits up to SECONDS for a command to succeed, giving up early when korvex has ended.
wait_for() {
    local seconds=$1
    shift
    local tries=$((seconds * 20))
    for ((i = 0; i < tries; i++)); do
        "$@" && return 0
        [ -n "$show" ] && ! kill -0 "$show" 2>/dev/null && return 1
        sleep 0.05
    done
    return 1
}

# A display of our own: Xvfb takes the first free number and writes it once it accepts clients,
# so parallel tests never share a screen and nothing waits longer than the start-up takes.
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$out/display" 2>"$out/xvfb.txt" &
xvfb=$!
wait_for 20 test -s "$out/display" || fail "Xvfb did not start: $(cat "$out/xvfb.txt")"
export DISPLAY=":$(head -n 1 "$out/display")"

# --for bounds the run should the test die before it closes the window itself.
"$korvex" show "$form" --scale 2 --for 60 >"$events" 2>"$out/stderr.txt" &
show=$!

find_window() { window=$(xdotool search --name '^korvex - buttons\.json$' 2>/dev/null | head -n 1) && [ -n "$window" ]; }
if ! wait_for 30 find_window; then
    grep -q "built without SDL2" "$out/stderr.txt" && skip "$(cat "$out/stderr.txt")"
    fail "no window titled 'korvex - buttons.json' appeared"
fi

# The form is 6000 x 2400 twips: 400 x 160 pixels, 800 x 320 at --scale 2.
geometry=$(xdotool getwindowgeometry --shell "$window")
grep -q '^WIDTH=800$' <<<"$geometry" && grep -q '^HEIGHT=320$' <<<"$geometry" ||
    fail "window is not 800 x 320: $geometry"

# Senden is at 240, 240 twips, 1800 x 600: pixels 16, 16, 120 x 40, so its centre is 76, 36 on
# the simulated screen and 152, 72 in the scaled window.
xdotool mousemove --window "$window" 152 72 click 1
wait_for 20 grep -q '^event Senden\.MouseUp' "$events" || fail "the click did not reach Senden"

# The press cycle of a push button, in order, at the pointer's place on its caption.
order=$(grep -o '^event Senden\.[A-Za-z]*([^)]*)' "$events" | tr '\n' ' ')
[[ "$order" == *"event Senden.MouseDown(1, 0, 10, 6) event Senden.Click() event Senden.MouseUp(1, 0, 10, 6)"* ]] ||
    fail "Senden's events are out of order: $order"

# Keys go to the focused control: the click focused Senden, Tab moves on to Ton (TabIndex 1),
# and a typed letter arrives there as key down, press and up.
# Without a window manager the keyboard focus is set directly, and asked for again until the
# server reports it (a bare --sync could wait for ever if the request were lost).
take_focus() {
    xdotool windowfocus "$window" 2>/dev/null
    [ "$(xdotool getwindowfocus 2>/dev/null)" = "$window" ]
}
wait_for 20 take_focus || fail "the window did not get the keyboard focus ($(xdotool getwindowfocus 2>&1))"
xdotool key Tab
xdotool type a
wait_for 20 grep -q '^event Ton\.KeyUp(65, 0)' "$events" || fail "typed keys did not reach Ton"
grep -q '^event Ton\.KeyPress(97)' "$events" || fail "no KeyPress(97) on Ton"
! grep -q '^event Senden\.Key' "$events" || fail "Senden saw keys after Tab moved the focus"

# Closing ends korvex cleanly (SDL turns the termination request into a quit).
kill -TERM "$show"
wait "$show"
status=$?
show=""
[ "$status" -eq 0 ] || fail "korvex show ended with status $status"
echo "korvex show took the click and the keys:"
cat "$events"
