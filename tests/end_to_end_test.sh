#!/bin/sh
# A first installation from the command line and one over it, on real processes,
# files and logs. tests/faults_test.sh has the other outcomes.
# usage: end_to_end_test.sh APP_BUNDLE
set -u
. "$(dirname "$0")/support.sh"

use_bundle "$1"
unset DISPLAY WAYLAND_DISPLAY
ui_log=$root/tmp/tessal_installer_ui.log
opened=$root/user/Library/"Application Support/Orvane/opened.log"

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
install() {
  SUDO_ASKPASS=/bin/true timeout 60 "$app/Contents/MacOS/orvane-install" --root "$root" >"$work/out" 2>&1
}

echo fresh
install & front=$!
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources allow $base || fail "allow"
wait_for_end $front
expect status $? 0
grep -q 安装成功 "$work/out" || fail "no message"
expect "current source" "$(sources current)" $base.pinyin
expect_lines "UI log" "$ui_log" '开始注册并激活输入法...' '启用路径：全新安装（可能弹出“允许启用”提示）' \
  '已调用 TISRegisterInputSource' '已调用 LSRegisterURL' \
  '已调用 TISDisableInputSource（fresh:disableAll，一次，mode=[0], base=0）' \
  '已调用 TISEnableInputSource（fresh:enableBase=0，trigger=enter-waiting）' \
  '收到输入源启用状态更新（kTISNotifyEnabledKeyboardInputSourcesChanged）' \
  'kTISNotifyEnabledKeyboardInputSourcesChanged，ok=true）' '已拉起设置应用（首装 bootstrap）'
await "the settings" grep -q opened "$opened"
! pgrep -af -- "-F $root/tmp|orvane-install --root $root" || fail "still running"
await "no process left" nothing_left || cat "$work/left"

echo overwrite
install
expect status $? 0
expect_lines "UI log" "$ui_log" '启用路径：覆盖安装（跳过 enable，仅 select）' '（ok=true）'
expect "settings opened" "$(cat "$opened")" opened

finish
