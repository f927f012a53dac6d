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
# A busy machine may lose a key.
close_window() { xdotool windowactivate --sync "$window" key alt+F4 sleep 0.5; }
closed() { close_window; ! find_window --pid $installer; }
left() { xdotool mousemove --window "$window" 425 620 click 1; closed; }
ended() { wait_for_end $installer; expect "$1: exit status" $? 0; installer=; }

# At both scales.
for scale in 1 2; do
  export QT_SCALE_FACTOR=$scale
  open_installer
  expect "size at scale $scale" "$(size)" 1000x900
  kill -TERM $installer
  ended "SIGTERM at scale $scale"
done
unset QT_SCALE_FACTOR

env -u DISPLAY -u WAYLAND_DISPLAY "$app/Contents/MacOS/Orvane Installer" --root "$root" 2>"$work/messages"
expect "status without a display" $? 69

start_window_manager

# Leaving while it waits, when closing is refused.
open_installer
xdotool windowactivate --sync "$window" key Tab space
await "the waiting phase" grep -q trigger=enter-waiting "$root/tmp/tessal_installer_ui.log"
await "退出安装" left
ended "退出安装"

# Closing while the script runs.
cp -R "$app" "$work/other.app"
app=$work/other.app
echo 'echo $$ >"$INSTALL_ROOT/running"; exec sleep 90' >"$app/Contents/Resources/install.sh"
open_installer
xdotool windowsize "$window" 1100 800 2>/dev/null
xdotool windowactivate --sync "$window" key Tab space
await "the script" test -s "$root/running"
expect "size after resizing" "$(size)" 1000x900
await "the end of the window" closed
ended "close while the script runs"
! kill "$(cat "$root/running")" 2>/dev/null || fail "the script went on"

rm "$app/Contents/Resources/AppIcon.png"
expect "without its icon" "$(timeout 30 "$app/Contents/MacOS/Orvane Installer" --root "$root" 2>&1 | grep -o AppIcon.png)" AppIcon.png

finish
