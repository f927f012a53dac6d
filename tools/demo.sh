#!/bin/sh
# Drives a whole installation with real clicks under Xvfb, at two pixels a point, and
# takes a screenshot of each step; fails if a step is not reached. What the README
# shows goes to OUTPUT_FOLDER/readme.  usage: demo.sh APP_BUNDLE OUTPUT_FOLDER
set -u
# shellcheck source-path=SCRIPTDIR source=../tests/support.sh
. "$(dirname "$0")/../tests/support.sh"

if [ "$1" != --inside ]; then
  unset WAYLAND_DISPLAY SUDO_ASKPASS
  on_display 2120x1200 "$0" --inside "$@"
fi

use_bundle "$2"
out=$3
rm -rf "$out"
mkdir -p "$out/readme" "$work/openbox"
installer='' step=0 frames=0 animation=''
clean_up() {
  kill $manager $installer 2>/dev/null
  end_agents
}
fail() {
  echo "demo: $*" >&2
  import -silent -window root "$out/not-reached.png" 2>/dev/null
  kill $$
  exit 1
}

# Windows without a window manager's bars, on a ground that is not white.
cat >"$work/openbox/rc.xml" <<'END'
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <keyboard><keybind key="A-F4"><action name="Close"/></keybind></keyboard>
  <applications><application class="*"><decor>no</decor></application></applications>
</openbox_config>
END
export QT_SCALE_FACTOR=2 XDG_CONFIG_HOME="$work"
start_window_manager
display -size 2120x1200 -window root 'xc:#d5dded'

# shot NAME [X]: the screen as it is; the README gets what lies right of X.
shot() {
  sleep 0.5
  step=$((step + 1))
  file=$out/$(printf %02d $step)-$1.png
  import -silent -window root "$file" || fail "no screenshot of $1"
  [ -z "${2:-}" ] || convert "$file" -crop "1080x980+$2+110" +repage "$out/readme/$1.png"
}
# frame MILLISECONDS: the screen as it is joins the animation.
frame() {
  frames=$((frames + 1))
  import -silent -window root "$work/$frames.ppm" || fail "no frame"
  animation="$animation -d $1 $work/$frames.png"
}
frames_until() {
  until "$@"; do
    [ $frames -lt 200 ] || fail "not reached: $*"
    frame 180
  done
}
click() { xdotool mousemove --window "$1" "$2" "$3" sleep 0.1 click 1; }
log_has() { grep -qs "$1" "$root/tmp/tessal_installer_ui.log"; }

# The steps of the script are slowed down, so that the bar can be seen moving.
slow_app="$work/Orvane Installer.app"
cp -R "$app" "$slow_app"
sed -E 's/^( *)(step |log )/\1sleep 0.5; \2/' "$app/Contents/Resources/install.sh" \
  >"$slow_app/Contents/Resources/install.sh"

"$slow_app/Contents/MacOS/Orvane Installer" --root "$root" & installer=$!
window=$(window_of --pid "$installer")
xdotool windowmove --sync "$window" 38 150
xdotool mousemove --window "$window" 500 850 # hovers over no button
shot start 0
frame 1500
click "$window" 500 606
prompt=$(window_of --name '^Orvane Installer$')
xdotool windowmove --sync "$prompt" 1260 263 windowfocus --sync "$prompt" type --delay 20 geheim
shot password 1040
frame 1500
xdotool key Return
frames_until log_has 'permission change successful'
shot progress 0
frames_until find_window --name 输入法许可
consent=$found
shot waiting 0
frame 2500
xdotool windowactivate --sync "$window" key alt+F4
shot exit-confirmation 0
click "$window" 650 720
click "$consent" 532 350
await success log_has '已拉起设置应用'
end_agents
shot success 0
frame 3000
click "$window" 500 606
wait_for_end "$installer" || fail "status $?"

mogrify -resize 50% -format png "$work"/*.ppm
# shellcheck disable=SC2086 # names without blanks
img2webp -loop 0 -lossy -q 80 -m 6 $animation -o "$out/readme/installation.webp" >/dev/null || fail "no animation"
montage -label '%t' "$out"/[0-9]*.png -tile 3x -geometry 640x362+6+6 "$out/contact-sheet.png"
echo "all in $out/contact-sheet.png"
