#!/bin/bash
# Drives whole installations with real clicks under Xvfb, at two pixels a point, and
# takes a screenshot a step; fails if a step is not reached. What the README shows
# goes to OUTPUT_FOLDER/readme.  usage: demo.sh APP_BUNDLE OUTPUT_FOLDER
set -u
# shellcheck source-path=SCRIPTDIR source=../tests/support.sh
. "$(dirname "$0")/../tests/support.sh"

app=$1
out=$2
rm -rf "$out"
mkdir -p "$out/readme"
work=$(mktemp -d)
children=()
step=0

clean_up() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null; done
  end_agents
  rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 1' HUP INT TERM
fail() {
  echo "demo: $*" >&2
  import -silent -window root "$out/not-reached.png" 2>/dev/null
  exit 1
}

Xvfb -displayfd 3 -noreset -screen 0 3000x1900x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
children+=($!)
await "a display" test -s "$work/display"
DISPLAY=:$(cat "$work/display")
export DISPLAY
unset WAYLAND_DISPLAY SUDO_ASKPASS
display -size 3000x1900 -window root 'xc:#d5dded'
export QT_SCALE_FACTOR=2
# The windows alone, without a window manager's bars.
cat >"$work/openbox.xml" <<'END'
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
  <applications><application class="*"><decor>no</decor></application></applications>
</openbox_config>
END
openbox --config-file "$work/openbox.xml" >/dev/null 2>&1 &
children+=($!)

shot() {
  sleep 0.5
  step=$((step + 1))
  import -silent -window root "$out/$(printf %02d $step)-$1.png" || fail "no screenshot of $1"
  echo "$(printf %02d $step) $1"
}
# The installer and what lies over it, for the README.
picture() {
  sleep 0.5
  import -silent -window root -crop "$(place_of "$window")" +repage "$out/readme/$1.png" ||
    fail "no picture of $1"
}
place_of() { # place_of WINDOW: as WIDTHxHEIGHT+X+Y
  xwininfo -id "$1" | awk '/Absolute upper-left X/ { x = $4 } /Absolute upper-left Y/ { y = $4 }
    /Width:/ { w = $2 } /Height:/ { print w "x" $2 "+" x "+" y }'
}
# The installer, and the consent window beside it, at half the size, until
# end_recording. A frame is named for its time in milliseconds.
start_recording() {
  mkdir "$work/frames"
  while [ ! -e "$work/end-of-recording" ]; do
    import -silent -window root -crop 1920x960+960+470 +repage "ppm:$work/frame" &&
      mv "$work/frame" "$work/frames/$(date +%s%3N)"
  done &
  recorder=$!
}
end_recording() { # end_recording FILE
  touch "$work/end-of-recording"
  wait "$recorder"
  local arguments=() previous='' since=0 time frame
  for frame in "$work"/frames/*; do
    time=$(basename "$frame")
    if [ -z "$previous" ]; then
      previous=$frame since=$time
    elif ! cmp -s "$previous" "$frame"; then
      arguments+=(-d $((time - since)) "$previous.png")
      previous=$frame since=$time
    fi
  done
  for frame in "$work"/frames/*; do convert "ppm:$frame" -resize 50% "$frame.png"; done
  img2webp -loop 0 -lossy -q 80 -m 6 "${arguments[@]}" -d 3000 "$previous.png" -o "$1" >/dev/null ||
    fail "no animation"
}
visible() { xdotool search --onlyvisible --"$1" "$2" | tail -n 1 | grep .; }
gone() { ! visible "$@"; }
click() { # click WINDOW X Y, in the window's own points
  xdotool mousemove --window "$1" "$2" "$3" sleep 0.1 click 1
}
ui_log_has() { grep -q "$1" "$root/tmp/tessal_installer_ui.log"; }

# The steps of the script are slowed down, so that the bar can be seen moving.
slow_app="$work/Orvane Installer.app"
cp -R "$(realpath "$app")" "$slow_app"
sed -E 's/^( *)(log .*)/\1sleep 0.4; \2/' "$app/Contents/Resources/install.sh" \
  >"$slow_app/Contents/Resources/install.sh"

start() { # start NAME BUNDLE: the installer on the root NAME; its window goes to $window
  root=$work/$1
  mkdir -p "$root"
  "$2/Contents/MacOS/Orvane Installer" --root "$root" &
  installer=$!
  children+=("$installer")
  window=
  await "window of $1" visible pid "$installer"
  sleep 0.5
  window=$(visible pid "$installer")
}
readonly consent=输入法许可 settings='键盘 · 输入法' prompt='^Orvane Installer$'
install_button() { click "$window" 500 606; }
password() { # password KEYS...
  await "password window" visible name "$prompt"
  password_window=$(visible name "$prompt")
  xdotool windowfocus --sync "$password_window" type --delay 20 "geheim"
  [ "$1" = Return ] && [ "$root" = "$work/fresh" ] && [ ! -e "$out/readme/password.png" ] &&
    shot password && picture password
  xdotool key "$1"
  await "end of the password window" gone name "$prompt"
}
await_end() { await "end of the installer" eval "! kill -0 $installer"; }

answer_consent() { # by its button "好"
  local window
  window=$(visible name "$consent")
  click "$window" 532 $(($(xdotool getwindowgeometry "$window" | sed -n 's/.*x//p') - 98))
}

start recorded "$slow_app"
start_recording
sleep 1
install_button
password Return
await "consent window" visible name "$consent"
sleep 2
answer_consent
await "success" ui_log_has '已拉起设置应用'
sleep 1
end_recording "$out/readme/installation.webp"
click "$window" 500 606
await_end

start fresh "$slow_app"
shot start
install_button
password Return
await "a moved bar" ui_log_has 'permission change successful'
shot progress
picture progress
await "consent window" visible name "$consent"
shot waiting
picture waiting
xdotool windowactivate --sync "$window" key alt+F4
shot exit-confirmation
picture exit-confirmation
click "$window" 650 720
await "go-enable" ui_log_has 'openKeyboardSettings(): opened'
await "settings window" visible name "$settings"
shot settings-and-consent
kill -0 "$installer" || fail "the installer was closed"
answer_consent
await "success" ui_log_has '已拉起设置应用'
end_agents
shot success
picture success
click "$window" 500 606
await_end

start fresh "$slow_app"
install_button
password Return
await "overwrite" ui_log_has '已处理覆盖安装'
shot overwrite-success
click "$window" 500 606
await_end

start refused "$app"
install_button
password Escape
shot refused
[ ! -s "$root/tmp/tessal_installer_ui.log" ] || fail "a refusal was logged"
xdotool windowactivate --sync "$window" key alt+F4
await_end

echo 'echo "磁盘已满" >&2; exit 3' >"$slow_app/Contents/Resources/install.sh"
start failed "$slow_app"
install_button
password Return
await "failure" ui_log_has '管理员授权失败: 磁盘已满'
shot failed
xdotool windowactivate --sync "$window" key alt+F4
await_end

rm "$slow_app/Contents/Resources/install.sh"
start no-script "$slow_app"
install_button
await "missing script" ui_log_has '未找到 install.sh'
shot failure-notice
xdotool windowactivate --sync "$window" key alt+F4
await_end

montage -label '%t' "$out"/[0-9]*.png -tile 3x -geometry 640x360+6+6 "$out/contact-sheet.png"
echo "screenshots in $out, all in $out/contact-sheet.png"
