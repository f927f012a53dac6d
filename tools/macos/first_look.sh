#!/bin/bash
# Tries on a Mac what can be tried there without a person: no step stops the next, and
# a table at the end says how each went. Outputs and pictures stay in FOLDER.
#
# usage: first_look.sh APPLICATION [FOLDER]
#   CONTRACT_TEST   the program platform_contract_test, if it was built

set -u
if ! [ -d "${1:-}/Contents" ]; then
  echo "usage: first_look.sh APPLICATION [FOLDER]" >&2
  exit 64
fi
readonly contents=$1/Contents results=${2:-first-look}
mkdir -p "$results"
table="| step | answer | last line |
|---|---|---|"

# step NAME COMMAND…: a minute at most for each.
step() {
  local name=$1 output=$results/$1.txt answer=yes
  shift
  perl -e 'alarm 60; exec @ARGV or exit 127' "$@" >"$output" 2>&1 || answer="no, $?"
  table="$table
| $name | $answer | $(tail -n 1 "$output" | tr '|' '/' | cut -c 1-150) |"
}

# Number, size, place, layer and title of the windows that a process shows.
windows_of() {
  osascript -l JavaScript -e 'ObjC.import("CoreGraphics")
    function run(words) {
      const onScreen = 1
      const all = ObjC.deepUnwrap(ObjC.castRefToObject($.CGWindowListCopyWindowInfo(onScreen, 0)))
      return all.filter(window => window.kCGWindowOwnerPID == words[0]).map(window => {
        const at = window.kCGWindowBounds
        return [window.kCGWindowNumber, at.Width + "x" + at.Height, at.X + "," + at.Y,
                "layer " + window.kCGWindowLayer, window.kCGWindowName].join(" ")
      }).join("\n")
    }' "$1"
}
# By Accessibility: the same, and the buttons of the title bar.
title_bar_of() {
  osascript -e "tell application \"System Events\" to tell (first process whose unix id is $1) to get ¬
    {name, position, size, value of attribute \"AXFullScreen\", description of buttons} of window 1"
}
ended() { ! kill -0 "$1" 2>/dev/null; }
wait_for() {
  for _ in {1..40}; do
    "$@" && return
    sleep 0.5
  done
  return 1
}
has_window() { [ -n "$(windows_of "$1" 2>/dev/null)" ]; }
# Functions for perl's exec.
export -f windows_of title_bar_of ended wait_for has_window

step system sh -c 'sw_vers; sysctl -n hw.model; system_profiler SPDisplaysDataType | grep Resolution'
step signature codesign --verify --deep --strict --verbose=2 "$1"
step gatekeeper spctl --assess --type execute --verbose=2 "$1"
step version "$contents/MacOS/orvane-install" --version
step doctor "$contents/MacOS/orvane-install" doctor --json
[ -z "${CONTRACT_TEST:-}" ] || step contract "$CONTRACT_TEST"

"$contents/MacOS/Orvane Installer" >"$results/application.txt" 2>&1 &
readonly installer=$!
step start bash -c "wait_for has_window $installer"
step window bash -c "windows_of $installer"
step title_bar bash -c "title_bar_of $installer"
step picture screencapture -x "$results/screen.png"
step quit osascript -e 'tell application id "com.tessal.installer.Orvane" to quit'
step end bash -c "wait_for ended $installer"
ended "$installer" || kill -9 "$installer"
wait "$installer"
table="$table
| exit status | $? | $(tail -n 1 "$results/application.txt" | cut -c 1-150) |"

printf '%s\n' "$table" | tee "$results/table.md" ${GITHUB_STEP_SUMMARY:+"$GITHUB_STEP_SUMMARY"}
