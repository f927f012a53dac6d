#!/bin/bash
# Drives whole installations with real clicks under Xvfb and takes a screenshot a
# step; fails if a step is not reached.  usage: demo.sh APP_BUNDLE OUTPUT_FOLDER
set -u
export LC_ALL=C.UTF-8 # the windows' titles are Chinese

app=$1
out=$2
rm -rf "$out"
mkdir -p "$out"
work=$(mktemp -d)
display_file=$work/display
children=()
step=0

clean_up() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null; done
  for lock in "$work"/*/user; do
    [ -d "$lock" ] && end_agents
  done
  rm -rf "$work"
}
# The agent stays when the installer ends, as the system's does; here it must not.
end_agents() {
  for process in /proc/[0-9]*; do
    { tr '\0' ' ' <"$process/cmdline"; } 2>/dev/null | grep -q "input-source-agent --root $work/" &&
      kill "${process#/proc/}" 2>/dev/null
  done
}
trap clean_up EXIT
trap 'exit 1' HUP INT TERM
die() {
  echo "demo: $*" >&2
  import -silent -window root "$out/not-reached.png" 2>/dev/null
  exit 1
}

Xvfb -displayfd 3 -noreset -screen 0 1920x1080x24 -nolisten tcp 3>"$display_file" 2>/dev/null &
children+=($!)
for ((i = 0; i < 100; ++i)); do [ -s "$display_file" ] && break; sleep 0.1; done
DISPLAY=:$(cat "$display_file")
export DISPLAY
unset WAYLAND_DISPLAY SUDO_ASKPASS QT_SCALE_FACTOR
openbox >/dev/null 2>&1 &
children+=($!)

# await WHAT COMMAND...: until the command succeeds.
await() {
  local what=$1
  shift
  for ((i = 0; i < 200; ++i)); do
    "$@" >/dev/null 2>&1 && return
    sleep 0.1
  done
  die "not reached: $what"
}
shot() {
  sleep 0.5
  step=$((step + 1))
  import -silent -window root "$out/$(printf %02d $step)-$1.png" || die "no screenshot of $1"
  echo "$(printf %02d $step) $1"
}
visible() { xdotool search --onlyvisible --"$1" "$2" | tail -n 1 | grep .; }
gone() { ! visible "$@"; }
click() { # click WINDOW X Y, in the window's own points
  xdotool mousemove --window "$1" "$2" "$3" sleep 0.1 click 1
}
ui_log_has() { grep -q "$1" "$root/tmp/tessal_installer_ui.log"; }

# The steps of the script are slowed down, so that the bar can be seen moving.
slow_app="$work/Orvane Installer.app"
cp -R "$app" "$slow_app"
sed -E 's/^( *)(log .*)/\1sleep 0.4; \2/' "$app/Contents/Resources/install.sh" \
  >"$slow_app/Contents/Resources/install.sh"

start() { # start NAME BUNDLE: the installer on the root NAME; its window goes to $window
  root=$work/$1
  "$2/Contents/MacOS/Orvane Installer" --root "$root" &
  installer=$!
  children+=("$installer")
  window=
  await "window of $1" visible pid "$installer"
  sleep 0.5
  window=$(visible pid "$installer")
}
readonly consent=输入法许可 settings='键盘 · 输入法' prompt='^Orvane Installer$'
install_button() { click "$window" 500 528; }
password() { # password KEYS...
  await "password window" visible name "$prompt"
  password_window=$(visible name "$prompt")
  xdotool windowfocus --sync "$password_window" type --delay 20 "geheim"
  [ "$1" = Return ] && shot password
  xdotool key "$1"
  await "end of the password window" gone name "$prompt"
}
await_end() { await "end of the installer" eval "! kill -0 $installer"; }

start fresh "$slow_app"
shot start
install_button
password Return
await "a moved bar" ui_log_has 'permission change successful'
shot progress
await "consent window" visible name "$consent"
shot waiting
# Aside, so that what lies beneath can be seen.
xdotool windowmove --sync "$(visible name "$consent")" 20 700
xdotool windowfocus --sync "$window" key alt+F4
shot exit-confirmation
click "$window" 575 620
await "go-enable" ui_log_has 'openKeyboardSettings(): opened'
await "settings window" visible name "$settings"
xdotool windowmove --sync "$(visible name "$settings")" 1455 100
shot settings-and-consent
kill -0 "$installer" || die "the installer was closed"
consent_window=$(visible name "$consent")
xdotool windowactivate --sync "$consent_window"
click "$consent_window" 266 $(($(xdotool getwindowgeometry "$consent_window" | sed -n 's/.*x//p') - 49))
await "success" ui_log_has '已拉起设置应用'
end_agents
shot success
click "$window" 500 528
await_end

start fresh "$slow_app"
install_button
password Return
await "overwrite" ui_log_has '已处理覆盖安装'
shot overwrite-success
click "$window" 500 528
await_end

start refused "$app"
install_button
password Escape
shot refused
[ ! -s "$root/tmp/tessal_installer_ui.log" ] || die "a refusal was logged"
xdotool windowfocus --sync "$window" key alt+F4
await_end

echo 'echo "磁盘已满" >&2; exit 3' >"$slow_app/Contents/Resources/install.sh"
start failed "$slow_app"
install_button
password Return
await "failure" ui_log_has '管理员授权失败: 磁盘已满'
shot failed
xdotool windowfocus --sync "$window" key alt+F4
await_end

rm "$slow_app/Contents/Resources/install.sh"
start no-script "$slow_app"
install_button
await "missing script" ui_log_has '未找到 install.sh'
shot failure-notice
xdotool windowfocus --sync "$window" key alt+F4
await_end

montage -label '%t' "$out"/[0-9]*.png -tile 3x -geometry 640x360+6+6 "$out/contact-sheet.png"
echo "screenshots in $out, all in $out/contact-sheet.png"
