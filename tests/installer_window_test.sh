#!/bin/sh
# The installer's real window, with and without a window manager and at both
# scales.  usage: installer_window_test.sh APP_BUNDLE   Exit status 77: it cannot
# run here.
set -u
. "$(dirname "$0")/support.sh"

case "${1:-}" in
  --large | --small) ;;
  *)
    (on_display 1280x1024 "$0" --large "$1") || exit $?
    on_display 800x600 "$0" --small "$1"
    ;;
esac

use_bundle "$2"
installer='' manager=''
clean_up() {
  kill $installer $manager 2>/dev/null
  end_agents
}

open_installer() { # the window goes to $window
  rm -f "$root/tmp/tessal_installer_ui.log" # it tells of the run before
  SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/Orvane Installer" --root "$root" 2>"$work/messages" &
  installer=$!
  window=$(window_of --pid $installer) || { fail "no window: $(kill -0 $installer 2>&1) $(cat "$work/messages")"; finish; }
  sleep 0.5
}
size() { xwininfo -id "$window" | awk '/Width:/ { w = $2 } /Height:/ { print w "x" $2 }'; }
content_centre() {
  xwininfo -id "$window" | awk '/Absolute upper-left X/ { x = $4 } /Absolute upper-left Y/ { y = $4 }
    /Width:/ { x += $2 / 2 } /Height:/ { print x "," y + $2 / 2 }'
}
# The colour of a point of the window, in pixels.
colour() { import -silent -window "$window" -crop 1x1+"$1"+"$2" -depth 8 txt:- | grep -o '#[0-9A-F]\{6\}' | tail -n 1; }
click() { xdotool mousemove --window "$window" "$1" "$2" sleep 0.2 click 1; }
ended() { wait_for_end $installer; expect "$1: exit status" $? 0; installer=; }
ui_log_has() { grep -q "$1" "$root/tmp/tessal_installer_ui.log"; }

if [ "$1" = --small ]; then
  echo "a screen smaller than the window"
  for has_manager in no yes; do
    [ $has_manager = no ] || start_window_manager
    open_installer
    left=$(xwininfo -id "$window" | awk '/Absolute upper-left X/ { print $4 }')
    top=$(xwininfo -id "$window" | awk '/Absolute upper-left Y/ { print $4 }')
    # The title bar, if there is one, lies just above.
    bar=$(xprop -id "$window" _NET_FRAME_EXTENTS 2>/dev/null | awk -F '[ ,]+' '/=/ { print $5 }')
    [ "$left" -ge 0 ] && [ "$left" -le 8 ] || fail "left edge at $left"
    [ "$top" -ge "${bar:-0}" ] && [ "$top" -le $((${bar:-0} + 8)) ] || fail "upper edge at $top"
    xdotool windowfocus --sync "$window" key Tab space
    await "the waiting phase" ui_log_has trigger=
    kill -TERM $installer
    ended "small screen"
    end_agents
    rm -rf "${root:?}"/*
  done
  finish
  exit
fi

echo "without a window manager"
for scale in 1 2 1.5 3; do
  export QT_SCALE_FACTOR=$scale
  open_installer
  # 1000 by 900 pixels on the screen, or as near as whole points of the scale come.
  case $scale in 1 | 2) width=1000 ;; *) width=999 ;; esac
  expect "size at scale $scale" "$(size)" ${width}x900
  for edge in "3 3" "998 450" "500 899"; do
    # shellcheck disable=SC2086
    expect "edge at scale $scale" "$(colour $edge)" "#FFFFFF"
  done
  if [ $width -eq 1000 ]; then
    expect "centre at scale $scale" "$(content_centre)" 640,512
    # The button's gradient runs from sky blue to lavender.
    left=$(colour $((500 - scale * 112)) $((450 + scale * 78)))
    right=$(colour $((500 + scale * 112)) $((450 + scale * 78)))
    case $left in "#7"?[BC]*) ;; *) fail "left end of the button is $left" ;; esac
    case $right in "#9"?[89]*) ;; *) fail "right end of the button is $right" ;; esac
  fi
  kill -TERM $installer
  ended "SIGTERM at scale $scale"
done
unset QT_SCALE_FACTOR

echo "painted by a thread of its own"
export QT_QUICK_BACKEND=rhi QSG_RHI_BACKEND=opengl QSG_RENDER_LOOP=threaded QSG_INFO=1
export ASAN_OPTIONS=detect_leaks=0 # the driver's are not ours
open_installer
grep -q 'threaded render loop' "$work/messages" || fail "the threaded loop was not used"
expect "corner" "$(colour 3 3)" "#FFFFFF"
case $(colour 388 528) in "#7"?[BC]*) ;; *) fail "the button is not drawn" ;; esac
kill -TERM $installer
ended "SIGTERM with a thread that paints"
unset QT_QUICK_BACKEND QSG_RHI_BACKEND QSG_RENDER_LOOP QSG_INFO ASAN_OPTIONS

start_window_manager

echo "closing while nothing is going on"
open_installer
centre=$(content_centre)
xdotool windowsize "$window" 700 600 2>/dev/null
xdotool windowminimize "$window" 2>/dev/null
sleep 0.5
expect "size after resizing" "$(size)" 1000x900
expect "centre" "$(content_centre)" "$centre"
xprop -id "$window" WM_STATE | grep -q Normal || fail "the window was minimised"
# The window that comes back from being minimised may be without the focus just then.
for press in 1 2 3 4 5; do
  xdotool windowactivate --sync "$window" key alt+F4
  sleep 1
  xwininfo -id "$window" >/dev/null 2>&1 || break
done
ended close

echo "closing while waiting"
open_installer
xdotool windowactivate --sync "$window" key Tab space
await "the waiting phase" ui_log_has trigger=enter-waiting
sleep 1
for press in 1 2; do
  xdotool windowactivate --sync "$window" key alt+F4
  sleep 0.5
  kill -0 $installer || fail "close $press ended the installer"
done
case $(colour 3 3) in "#C"*) ;; *) fail "nothing is dimmed: $(colour 3 3)" ;; esac
# Neither the dimmed area nor a key dismisses it, and what is below is out of reach.
click 500 805
xdotool key Escape
sleep 0.6
! ui_log_has openKeyboardSettings || fail "the button below was pressed"
case $(colour 3 3) in "#C"*) ;; *) fail "the overlay was dismissed" ;; esac
click 425 620
ended "退出安装"

echo "allowed elsewhere"
end_agents
open_installer
xdotool windowactivate --sync "$window" key Tab Return
await "the waiting phase" ui_log_has trigger=enter-waiting
sources allow $base
await "success" ui_log_has 'kTISNotifyEnabledKeyboardInputSourcesChanged，ok=true）'
sleep 1
xdotool windowactivate --sync "$window" key Tab space
ended "安装成功"
expect "current source" "$(sources current)" $base.pinyin

echo "the display is lost while the script runs"
bundle=$work/copy.app
cp -R "$app" "$bundle"
echo 'echo holding >>"$INSTALL_ROOT/tmp/tessal_installer.log"; sleep 60' >"$bundle/Contents/Resources/install.sh"
Xvfb -displayfd 3 -noreset -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>/dev/null & other_server=$!
await "another display" test -s "$work/display"
DISPLAY=:$(cat "$work/display")
app=$bundle
open_installer
xdotool windowfocus --sync "$window" key Tab space
await "the script" ui_log_has holding
kill -9 $other_server
wait_for_end $installer
expect "exit status" $? 1
installer=
await "the end of the script" sh -c "! grep -lsazxF -e 'INSTALL_ROOT=$root' /proc/[0-9]*/environ"

finish
