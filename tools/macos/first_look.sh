#!/bin/bash
# Tries on a Mac what can be tried there without a person: no step stops the next, and a table at the end says how each
# went. It fails if one says no that may not. Outputs and pictures stay in FOLDER.
#
# usage: first_look.sh [--install] APPLICATION [FOLDER]
#   --install       also installs the sample payload for all users, and removes it; sudo must ask no password
#   CONTRACT_TEST   the program platform_contract_test, if it was built

# -a: what a step runs knows all variables and functions.
set -ua
install=false
[ "${1:-}" != --install ] || { install=true && shift; }
[ -d "${1:-}/Contents" ] || { echo "usage: first_look.sh [--install] APPLICATION [FOLDER]" >&2 && exit 64; }
contents=$1/Contents results=${2:-first-look} failed=
program=$contents/MacOS/orvane-install resources=$contents/Resources
mkdir -p "$results"
table="| step | answer | last line |
|---|---|---|"

# try NAME COMMAND…: a minute at most. It may say no.
try() {
  local name=$1 output=$results/$1.txt
  shift
  answer=yes
  # By its path: another bash may come first in PATH, and does not know these functions.
  perl -e 'alarm 60; exec @ARGV or exit 127' "$BASH" -c '"$@"' - "$@" >"$output" 2>&1 || answer="no, $?"
  table="$table
| $name | $answer | $(tail -n 1 "$output" | tr '|' '/' | cut -c 1-200) |"
}
must() { try "$@"; [ "$answer" = yes ] || failed="$failed $1"; }

# Number, size in pixels, place, layer and title of the windows that a process shows.
windows_of() {
  osascript -l JavaScript -e 'ObjC.import("AppKit"); ObjC.import("CoreGraphics")
    function run(words) {
      const onScreen = 1, scale = $.NSScreen.mainScreen.backingScaleFactor
      const all = ObjC.deepUnwrap(ObjC.castRefToObject($.CGWindowListCopyWindowInfo(onScreen, 0)))
      return all.filter(window => window.kCGWindowOwnerPID == words[0]).map(window => {
        const at = window.kCGWindowBounds
        return [window.kCGWindowNumber, at.Width * scale + "x" + at.Height * scale, at.X + "," + at.Y,
                "layer " + window.kCGWindowLayer, window.kCGWindowName].join(" ")
      }).join("\n")
    }' "$1"
}
has_window() { [ -n "$(windows_of "$1" 2>/dev/null)" ]; }
has_its_size() { windows_of "$1" && windows_of "$1" | grep -q ' 1000x900 .* layer 0'; }
# By Accessibility: the same, and the buttons of the title bar.
title_bar_of() {
  osascript -e "tell application \"System Events\" to tell (first process whose unix id is $1) to get ¬
    {name, position, size, value of attribute \"AXFullScreen\", description of buttons} of window 1"
}
ended() { ! kill -0 "$1" 2>/dev/null; }
ended_with() { tail -n 1 "$results/application.txt" && return "$1"; }
wait_for() { for _ in {1..40}; do "$@" && return; sleep 0.5; done; return 1; }

# as_root SCRIPT STEP…: whether it ends well and notes these steps, in this order.
as_root() {
  local script=$1 log=/tmp/tessal_$1er.log
  shift
  sudo -n rm -f "$log" && sudo -n /bin/sh "$resources/$script.sh" && diff <(printf '%s\n' "$@" finish) "$log"
}
installing=('unzip package' 'kill Orvane' 'move app bundle to destination directory' 'permission change successful'
  'install Sondrel' 'move Sondrel to Applications' 'Sondrel installed successfully'
  'install Cogwen' 'move Cogwen to Applications' 'Cogwen installed successfully')
removing=('移开 Orvane' '移开 Sondrel' '移开 Cogwen' '删除移开的程序包')
# What of the product lies there, and what a run would have left behind.
on_disk() { ls -d '/Library/Input Methods/'{,.}*Orvane.app* /Applications/{Sondrel,Cogwen}.app 2>/dev/null; }
# The three bundles as they were packed, each file of them root's, and nothing else.
all_on_disk() {
  on_disk | tr '\n' ' '
  for archive in "$resources"/*.zip; do ditto -xk "$archive" "$results/payload"; done
  while read -r path; do
    diff -r "$results/payload/${path##*/}" "$path" && [ -z "$(find "$path" ! -uid 0 -o ! -gid 0)" ] || return
  done < <(on_disk)
  [ "$(on_disk | wc -l)" -eq 3 ]
}
none_on_disk() { on_disk; [ -z "$(on_disk)" ]; }
# That the user has not allowed it yet (3) is the system's answer.
activate() { "$program" activate --no-wait || [ $? -eq 3 ]; }
misses_the_bundle() { "$program" doctor --json; "$program" doctor --json | grep -q '"level":"fail".*"check":"bundle"'; }

try system sh -c 'sw_vers; sysctl -n hw.model; system_profiler SPDisplaysDataType | grep Resolution'
must perl /usr/bin/perl -e 'print "$^V\n"'
try signature codesign --verify --deep --strict --verbose=2 "$1"
try gatekeeper spctl --assess --type execute --verbose=2 "$1"
must version "$program" --version
try doctor "$program" doctor --json
[ -z "${CONTRACT_TEST:-}" ] || must contract "$CONTRACT_TEST"

"$contents/MacOS/Orvane Installer" >"$results/application.txt" 2>&1 &
installer=$!
must start wait_for has_window $installer
must window has_its_size $installer
try title_bar title_bar_of $installer
try picture screencapture -x "$results/screen.png"
try quit osascript -e 'tell application id "com.tessal.installer.Orvane" to quit'
# -1743: the system does not let this process ask for it.
! grep -q -e -1743 "$results/quit.txt" || kill $installer
must end wait_for ended $installer
ended $installer || kill -9 $installer
wait $installer
must exit_status ended_with $?

if $install; then
  defaults read com.apple.HIToolbox >"$results/lists_before.txt"
  must install as_root install "${installing[@]}"
  must installed all_on_disk
  must activate activate
  try calls sh -c "grep TIS /tmp/tessal_installer_ui.log | tr '\n' ' '"
  must doctor_machine "$program" doctor --machine --json
  try answers "$program" doctor --json
  # What the system answers.
  table="$table
$(sed -nE 's/.*l":"(.*)","scope":"user","check":"(.*)","text":"([^"]*).*/| \2 | \1 | \3 |/p' "$results/answers.txt")"
  must install_again as_root install "${installing[@]}"
  must installed_again all_on_disk
  must uninstall as_root uninstall "${removing[@]}"
  must uninstalled none_on_disk
  must doctor_at_last misses_the_bundle
  # The system changes them itself once the input method is enabled.
  judge=$(grep -q '"level":"pass".*"check":"enabled"' "$results/answers.txt" && echo try || echo must)
  $judge lists diff "$results/lists_before.txt" <(defaults read com.apple.HIToolbox)
fi

printf '%s\n' "$table" | tee "$results/table.md" ${GITHUB_STEP_SUMMARY:+"$GITHUB_STEP_SUMMARY"}
[ -z "$failed" ] || { echo "said no:$failed" && exit 1; }
