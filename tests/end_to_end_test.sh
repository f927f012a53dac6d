#!/bin/sh
# Whole installations from the command line, on real processes, files and logs:
# one for each outcome.  usage: end_to_end_test.sh APP_BUNDLE
set -u
. "$(dirname "$0")/support.sh"

app=$(realpath "$1")
base=com.tessal.inputmethod.Orvane
work=$(mktemp -d)
unset DISPLAY WAYLAND_DISPLAY TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS

trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM

# expect_lines WHAT FILE LINE...: the file holds these lines in this order.
expect_lines() {
  what=$1 file=$2 at=0
  shift 2
  for line; do
    next=$(awk -v from="$at" -v line="$line" 'NR > from && index($0, line) { print NR; exit }' \
      "$file" 2>/dev/null)
    [ -n "$next" ] || { fail "$what: no \"$line\" after line $at"; return; }
    at=$next
  done
}

# case_ NAME: a new root, and the bundle to run.
case_() {
  echo "$1"
  root=$work/$1
  bundle=$app
  ui_log=$root/tmp/tessal_installer_ui.log
}
copy_bundle() { bundle=$work/"copy $1.app"; cp -R "$app" "$bundle"; }
install() { # install ASKPASS [OPTION...]; the exit status goes to $status
  askpass=$1
  shift
  SUDO_ASKPASS=$askpass timeout 60 "$bundle/Contents/MacOS/orvane-install" --root "$root" "$@" \
    >"$root.out" 2>&1
  status=$?
}
sources() { "$app/Contents/Helpers/input-sources" --root "$root" "$@"; }
wait_for() { # wait_for FILE TEXT
  await "\"$2\" in $1" grep -q -- "$2" "$1"
}
no_child_left() {
  for process in /proc/[0-9]*; do
    { tr "\0" " " <"$process/cmdline"; } 2>/dev/null | grep -q -- "-F $root/tmp\|orvane-install --root $root" &&
      fail "still running: $(tr '\0' ' ' <"$process/cmdline")"
  done
}

case_ fresh
(install /bin/true; exit $status) & front=$!
wait_for "$root.out" '请将「澄枫输入法」添加到输入法列表'
sources allow $base || fail "allow"
wait_for_end $front
expect status $? 0
wait_for "$root.out" 安装成功
expect "current source" "$(sources current)" $base.pinyin
expect_lines "UI log" "$ui_log" '开始注册并激活输入法...' '启用路径：全新安装（可能弹出“允许启用”提示）' \
  '已调用 TISRegisterInputSource' '已调用 LSRegisterURL' \
  '已调用 TISDisableInputSource（fresh:disableAll，一次，mode=[0], base=0）' \
  '已调用 TISEnableInputSource（fresh:enableBase=0，trigger=enter-waiting）' \
  '收到输入源启用状态更新（kTISNotifyEnabledKeyboardInputSourcesChanged）' \
  'kTISNotifyEnabledKeyboardInputSourcesChanged，ok=true）' '已拉起设置应用（首装 bootstrap）'
wait_for "$root/user/Library/Application Support/Orvane/opened.log" opened
no_child_left

echo overwrite
TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1
export TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS
install /bin/true
unset TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS
expect status $status 0
expect_lines "UI log" "$ui_log" '启用路径：覆盖安装（跳过 enable，仅 select）' '（ok=true）'
expect "settings opened" "$(cat "$root/user/Library/Application Support/Orvane/opened.log")" opened
for key in AppleEnabledInputSources AppleSelectedInputSources AppleInputSourceHistory; do
  find "$root" -path '*ByHost*com.apple.HIToolbox*' -exec plistutil -f xml -i {} \; |
    awk -v key="$key" 'index($0, "<key>" key "<") { on = 1 } on' | sed '/<\/array>/q' |
    grep -q "<string>$base.pinyin</string>" || fail "$key lacks the entry"
done

case_ refused
install /bin/false
expect status $status 2
expect "UI log" "$(cat "$ui_log")" ""
[ ! -e "$root/Library" ] || fail "something was installed"

case_ no-script
copy_bundle 1
rm "$bundle/Contents/Resources/install.sh"
install /bin/true
expect status $status 1
grep -q '找不到安装脚本 install.sh' "$root.out" || fail "no message"

case_ failing-script
copy_bundle 2
printf 'echo unzip package >>"$INSTALL_ROOT/tmp/tessal_installer.log"; echo "磁盘已满" >&2; exit 3\n' \
  >"$bundle/Contents/Resources/install.sh"
install /bin/true
expect status $status 1
grep -q 安装失败 "$root.out" || fail "no message"
grep -q '管理员授权失败: 磁盘已满' "$ui_log" || fail "no reason in the UI log"

case_ empty-script
copy_bundle 3
echo : >"$bundle/Contents/Resources/install.sh"
install /bin/true
expect status $status 1
grep -q 未检测到已安装的输入法 "$root.out" || fail "no message"

case_ left-waiting
install /bin/true --no-wait
expect "status of --no-wait" $status 3
for signal in INT TERM; do
  rm -rf "$root"
  : >"$root.out"
  SUDO_ASKPASS=/bin/true sh -c 'trap - INT; exec "$@"' - "$bundle/Contents/MacOS/orvane-install" \
    --root "$root" >/dev/null 2>&1 & front=$!
  wait_for "$ui_log" trigger=enter-waiting
  kill -$signal $front
  wait_for_end $front
  expect "status after SIG$signal" $? 3
done
no_child_left

case_ interrupted
copy_bundle 4
printf 'trap "echo stopped >&2; exit 9" TERM\necho unzip package >>"$INSTALL_ROOT/tmp/tessal_installer.log"\nsleep 50 & wait\n' \
  >"$bundle/Contents/Resources/install.sh"
SUDO_ASKPASS=/bin/true "$bundle/Contents/MacOS/orvane-install" --root "$root" >"$root.out" 2>&1 & front=$!
wait_for "$ui_log" 'unzip package'
kill -TERM $front
wait_for_end $front
expect "status" $? 1
grep -q '管理员授权失败: stopped' "$ui_log" || fail "the script was not stopped"
no_child_left

case_ usage
for arguments in "--bogus" "--root" "extra"; do
  timeout 10 "$app/Contents/MacOS/orvane-install" $arguments >/dev/null 2>"$root.err"
  expect "status of $arguments" $? 64
  grep -q Usage: "$root.err" || fail "no usage for $arguments"
done

finish
