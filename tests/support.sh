# shellcheck shell=sh disable=SC2034,SC2154
# Shared by the test scripts of this folder; sourced.

export LC_ALL=C.UTF-8 # texts and window titles are Chinese
failures=0

fail() { echo "  FAILED: $*"; failures=$((failures + 1)); }
expect() { [ "$2" = "$3" ] || fail "$1: expected \"$3\", got \"$2\""; } # expect WHAT ACTUAL EXPECTED

# await WHAT COMMAND...: until the command succeeds, for 30 seconds at most.
await() {
  what=$1 tries=0
  shift
  until "$@" >/dev/null 2>&1; do
    tries=$((tries + 1))
    [ $tries -le 300 ] || { fail "not reached: $what"; return 1; }
    sleep 0.1
  done
}

# wait_for_end PID: its exit status. It is killed after 40 seconds.
wait_for_end() {
  (sleep 40; kill -9 "$1") >/dev/null 2>&1 & guard=$!
  wait "$1" 2>/dev/null
  ended_with=$?
  kill $guard 2>/dev/null
  return $ended_with
}

# use_bundle APP_BUNDLE: $app, and $work, a folder of the test's own, which goes with the test.
use_bundle() {
  app=$(cd "$1" && pwd -P) || exit 1
  base=com.tessal.inputmethod.Orvane
  work=$(mktemp -d)
  root=$work/root
  mkdir "$root"
  trap 'clean_up; rm -rf "$work"' EXIT
  trap 'exit 1' HUP INT TERM
  unset TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS INSTALL_ROOT
}
clean_up() { :; } # a test that starts programs ends them here
sources() { "$app/Contents/Helpers/input-sources" --root "$root" "$@"; }

finish() { [ $failures -eq 0 ] || { echo "$failures failed"; exit 1; }; }

skip() { echo "skipped: $*"; exit 77; }

# on_display SIZE SCRIPT ARGUMENT...: the script again, on a display of its own.
on_display() {
  for tool in xvfb-run xauth xdotool xprop xwininfo openbox import; do
    (unset -f xdotool import; command -v $tool) >/dev/null || skip "no $tool here"
  done
  size=$1
  shift
  # Without -noreset it resets when its last client leaves, and one that connects just
  # then finds no display.
  exec xvfb-run -a -s "-noreset -screen 0 ${size}x24" sh "$@"
}

# They may wait for an event that never comes, or for a click.
xdotool() { timeout 30 xdotool "$@"; }
import() { timeout 30 import "$@"; }

# window_of SEARCH...: prints the window, for which it waits. A search fails when another
# window goes just then.
window_of() { await "the window $*" find_window "$@" >&2 && echo "$found"; }
find_window() { found=$(xdotool search --onlyvisible "$@" 2>/dev/null | tail -n 1) && [ -n "$found" ]; }

# The agent stays when the installer ends, as the system's does. Those of roots below $work
# end here.
end_agents() { pgrep -f "input-source-agent --root $work/" | xargs -r kill; }

# Starts a window manager, as $manager.
start_window_manager() {
  openbox >/dev/null 2>&1 & manager=$!
  await "the window manager" sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep "#"'
}
