#!/bin/sh
# The installer's real window at both scales, and how it closes.
# usage: installer_window_test.sh APP_BUNDLE   Exit status 77: it cannot run here.
set -u
. "$(dirname "$0")/support.sh"

[ "${1:-}" = --inside ] || on_display 1280x1024 "$0" --inside "$1"

use_bundle "$2"
installer='' manager=''
clean_up() {
  kill $installer $manager 2>/dev/null
  end_agents
}

open_installer() { # the window goes to $window
  SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/Orvane Installer" --root "$root" 2>"$work/messages" &
  installer=$!
  window=$(window_of --pid $installer) || { fail "no window: $(cat "$work/messages")"; finish; }
  sleep 0.5
}
size() { xwininfo -id "$window" | awk '/Width:/ { w = $2 } /Height:/ { print w "x" $2 }'; }
# The colour of a point of the window, in pixels.
colour() { import -silent -window "$window" -crop 1x1+"$1"+"$2" -depth 8 txt:- | grep -o '#[0-9A-F]\{6\}' | tail -n 1; }
# A busy machine may lose a key.
close_window() { xdotool windowactivate --sync "$window" key alt+F4 sleep 0.5; }
closed() { close_window; ! find_window --pid $installer; }
ended() { wait_for_end $installer; expect "$1: exit status" $? 0; installer=; }

echo "at both scales"
for scale in 1 2; do
  export QT_SCALE_FACTOR=$scale
  open_installer
  expect "size at scale $scale" "$(size)" 1000x900
  expect "corner at scale $scale" "$(colour 998 898)" "#FFFFFF"
  kill -TERM $installer
  ended "SIGTERM at scale $scale"
done
unset QT_SCALE_FACTOR

env -u DISPLAY -u WAYLAND_DISPLAY "$app/Contents/MacOS/Orvane Installer" --root "$root" 2>"$work/messages"
expect "status without a display" $? 69

start_window_manager

echo "closing while nothing is going on"
open_installer
xdotool windowsize "$window" 1100 800 2>/dev/null
sleep 0.5
expect "size after resizing" "$(size)" 1000x900
await "the end of the window" closed
ended close

echo "closing while waiting"
open_installer
xdotool windowactivate --sync "$window" key Tab space
await "the waiting phase" grep -q trigger=enter-waiting "$root/tmp/tessal_installer_ui.log"
sleep 1
close_window
close_window
kill -0 $installer || fail "closing ended the installer"
xdotool mousemove --window "$window" 425 620 sleep 0.2 click 1
ended "退出安装"

finish
