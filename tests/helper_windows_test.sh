#!/bin/sh
# The windows of askpass and input-source-agent, with real clicks and keys.
# usage: helper_windows_test.sh APP_BUNDLE   Exit status 77: it cannot run here.
set -u
. "$(dirname "$0")/support.sh"

if [ "${1:-}" != --inside ]; then
  on_display 1000x800 "$0" --inside "$1"
fi

use_bundle "$2"
running=
clean_up() { kill $manager $running 2>/dev/null; }
start_window_manager

start() { # start TITLE PROGRAM [ARGUMENT...]: until its window has the focus
  title=$1 program=$app/Contents/Helpers/$2
  shift 2
  "$program" "$@" >"$work/out" 2>"$work/err" & running=$!
  # A window of that name may still be there from a program that has just ended.
  window=$(window_of --all --pid "$running" --name "^$title\$") &&
    xdotool windowactivate --sync "$window" || fail "no window $title"
}
ended() { wait_for_end "$running"; expect "$1: status" $? "$2"; running=; }
is() { [ "$(sources list | grep "^$base	" | cut -f 2)" = "$1" ]; }

ask() { start "$(basename "$app" .app)" askpass '想要 100% "更改"'; }
ask; xdotool type --delay 30 'a "B%1\'; xdotool key Return; ended Return 0
expect "password" "$(cat "$work/out")" 'a "B%1\'
ask; xdotool type --delay 30 abc; xdotool key Escape; ended Escape 1
[ ! -s "$work/out" ] || fail "Escape gives the password away"

env -u DISPLAY SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/orvane-install" --root "$root" \
  --no-wait >/dev/null
start 输入法许可 input-source-agent --root "$root" $base
xdotool mousemove --window "$window" 140 180 click 1
ended "consent 不允许" 0
is disabled || fail "consent 不允许 enables"

finish
