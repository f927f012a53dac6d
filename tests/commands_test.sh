#!/bin/sh
# The commands of orvane-install, on real processes, files and logs: how an installation may end, activation of a second
# account, diagnosis, removal, lines of JSON, the manual page and the completions.  usage: commands_test.sh APP_BUNDLE
# shellcheck disable=SC2016 # scripts and patterns have dollars of their own
set -u
. "$(dirname "$0")/support.sh"

use_bundle "$1"
mkdir "$work/second"
unset DISPLAY WAYLAND_DISPLAY
export SUDO_ASKPASS=/bin/true
bundle=$app
ui_log=$root/tmp/tessal_installer_ui.log

orvane() { timeout 60 "$bundle/Contents/MacOS/orvane-install" --root "$root" "$@" >"$work/out" 2>"$work/err"; }
start() {
  : >"$work/out" # what an earlier run said must not be taken for this one's
  "$bundle/Contents/MacOS/orvane-install" --root "$root" "$@" >"$work/out" 2>"$work/err" & front=$!
}
says() { # says WHAT PATTERN [err]: on standard output, or on standard error.
  grep -q -- "$2" "$work/${3:-out}" || fail "$1: nothing said of \"$2\": $(cat "$work/out" "$work/err")"
}
status_of() { # status_of EXPECTED COMMAND...
  expected=$1
  shift
  orvane "$@"
  expect "status of $*" $? "$expected"
}
started_run_ends() { # started_run_ends EXPECTED
  wait_for_end $front
  expect "status of the started run" $? "$1"
}
refused() { SUDO_ASKPASS=/bin/false; "$@"; SUDO_ASKPASS=/bin/true; }
picture() { (cd "$root" && find . -type d -name tmp -prune -o -printf '%p %m %T@ %s %l\n' | sort); }
changed() { ! picture | diff "$work/before" - >&2; }
are_listed() { grep -qa $base "$root"/user/Preferences/ByHost/com.apple.HIToolbox*; }
# scripted NAME COMMANDS: a bundle whose script of this name does these first.
scripted() {
  rm -rf "$work/copy.app"
  cp -R "$app" "$work/copy.app"
  bundle=$work/copy.app
  { echo "$2"; cat "$app/Contents/Resources/$1.sh"; } >"$bundle/Contents/Resources/$1.sh"
}
# json_lines STATEMENTS: what is asserted of the events in the output.
json_lines() {
  python3 -c "import json
events = [json.loads(line) for line in open('$work/out')]
of = lambda kind, key=None: [event[key or kind] for event in events if event['event'] == kind]
$1" || fail "the lines: $(cat "$work/out")"
}

echo usage
for arguments in "--no-wait doctor" "uninstall --json" "instal" "--root" "doctor --json=5"; do
  # shellcheck disable=SC2086
  status_of 64 $arguments
  says "wrong use" '--help 查看用法' err
done
"$app/Contents/MacOS/orvane-install" --root "$work/none" doctor 2>/dev/null
expect "status of a mistyped root" $? 64
[ ! -e "$work/none" ] || fail "a mistyped root was made"
"$app/Contents/MacOS/orvane-install" doctor 2>/dev/null
expect "status without a root" $? 64

echo "installations that fail"
refused status_of 2 install
says "a refused prompt" 未获得管理员授权 err
scripted install 'printf "磁盘已满\033]0;\342\200\256\302\233" >&2; exit 3'
status_of 1 install
says "a script that fails" '^磁盘已满␛]0;��$' err
bundle=$app

echo "a first installation, waited for"
start
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources allow $base || fail allow
started_run_ends 0
expect "current source" "$(sources current)" $base.pinyin
opened="$root/user/Library/Application Support/Orvane/opened.log"
await "the settings" grep -q opened "$opened"
info="$root/Library/Input Methods/Orvane.app/Contents/Info.plist"
sed -i 's|<string>1.0.0</string>|<string>99.0</string>|' "$info"
scripted install 'echo finish >>"$INSTALL_ROOT/tmp/tessal_installer.log"; 
  until grep -q finish "$INSTALL_ROOT/tmp/tessal_installer_ui.log"; do sleep 0.1; done; printf "满" >&2; exit 3'
status_of 1 install --json # the "finish" was not its own script's
json_lines '
assert of("phase") == ["script", "activation"]
assert of("status") == ["installing", "success", "failed"]
assert {"event": "status", "status": "failed", "message": "安装失败"} in events
assert of("message", "level") == ["info"] + ["error"] * 3
assert of("message", "text") == ["已安装的版本 99.0 比安装器里的 1.0.0 新，现在换成安装器里的版本", "安装失败", "满", "日志：'"$ui_log"'"]
assert events[-1] == {"event": "result", "command": "install", "exitStatus": 1}'
bundle=$app

echo "json lines of an installation"
sources deny $base
status_of 3 install --no-wait --json
json_lines '
fields = {"phase": {"phase"}, "progress": {"progress"}, "status": {"status"}, "message": {"level", "text"},
          "result": {"command", "exitStatus"}}
assert all(set(event) - {"event"} == fields[event["event"]] for event in events)
assert of("phase") == ["script", "activation"]
assert of("status") == ["installing", "waitingEnable"]
values = of("progress")
assert values == sorted({0, *values, 1}), values  # no two of them equal'

echo "a narrow terminal, and one that can do nothing"
terminal() { script -qefc "stty cols 40; TERM=$1 '$app/Contents/MacOS/orvane-install' --root '$root' $2" /dev/null </dev/null; }
terminal xterm --no-wait | tr '\r' '\n' | iconv -t GB18030 >"$work/out" # in this code, bytes are columns
LC_ALL=C grep -q ']' "$work/out" || fail "no bar"
LC_ALL=C awk '{ sub(/^\033\[K/, "") } length > 40 { bad = 1 } END { exit bad }' "$work/out" || fail "a line is too long"
terminal dumb doctor >"$work/out"
! grep -q "$(printf '\033')" "$work/out" || fail "escapes for a terminal that knows none"

echo "a second account, which needs no password"
SUDO_ASKPASS=/bin/false
start --home "$work/second" activate --once
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
kill -TERM $front
started_run_ends 3
start --home "$work/second" activate --once --go-enable --json
await "the keyboard settings" grep -qF 'openKeyboardSettings(): ' "$ui_log"
sources --home "$work/second" allow $base || fail allow
started_run_ends 0
json_lines 'assert of("phase") == ["activation", "waiting"] and of("status")[-1] == "success"'
expect "settings opened, for the first account alone" "$(cat "$opened")" opened
sources --home "$work/second" deny $base
status_of 0 --home "$work/second" activate --no-wait --once
SUDO_ASKPASS=/bin/true

echo diagnosis
rm "$ui_log" && mkfifo "$ui_log" # nothing waits for what comes out of it
status_of 1 doctor
says "a log that is none" '^\[警告] 安装器日志的位置上不是普通文件：'
says "what to do about it" '^       → 运行 orvane-install activate'
says "what others wrote, which begins no line" '^         finish$'
expect "lines for the three lists" "$(grep -c 偏好列表 "$work/out")" 1
status_of 0 doctor --machine
rm "$ui_log"
sources allow $base
sed -i.whole "s/$base.pinyin/another.mode/" "$info"
status_of 1 activate
says "no mode" 拼音模式没有启用 err
mv "$info.whole" "$info"
sources select $base.pinyin
TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1 orvane
status_of 0 activate --once
are_listed || fail "no entries in the lists"
picture >"$work/before"
status_of 0 doctor
"$app/Contents/MacOS/orvane-install" --root "$root" doctor --json 2>"$work/err" >/dev/full
expect "status without room for the output" $? 1
says "no room" 输出没有全部写完 err
! changed || fail "doctor has changed something"
mkdir "$root/Library/Input Methods/.Orvane.app.$(printf 'a\377').staging"
status_of 1 doctor --json
json_lines '
findings = [event for event in events if "check" in event]
scopes = [event["scope"] for event in findings]
assert scopes == sorted(scopes) and findings[scopes.index("user")]["check"] == "settings", scopes
assert all(event.keys() == {"event", "level", "scope", "check", "text", "next", "value"} for event in findings)
assert [event["check"] for event in findings if event["level"] == "fail"] == ["leftovers"]'
rmdir "$root/Library/Input Methods/.Orvane.app".*

echo "removal, not wanted"
picture >"$work/before"
echo no | orvane uninstall
expect "status of a no" $? 2
status_of 2 uninstall </dev/null
refused status_of 2 uninstall --yes
! changed || fail "something was removed"

echo "removal that fails"
cp -a "$root" "$work/sound"
scripted uninstall 'exit 0'
status_of 1 uninstall --yes
scripted uninstall 'printf 满 >&2; exit 3'
status_of 1 uninstall --yes
expect "a script that fails" "$(cat "$work/err")" "移除失败：满
日志：$root/tmp/tessal_uninstaller.log"
scripted uninstall 'touch "$INSTALL_ROOT/tmp/held"; exec sleep 50'
start uninstall --yes
await "the script" [ -e "$root/tmp/held" ]
kill -INT $front
started_run_ends 1
says "an interruption" '^移除被中断' err
! changed || fail "a removal that failed has changed something"
scripted uninstall 'rm -rf "$INSTALL_ROOT/Library" "$INSTALL_ROOT/Applications"; exit 0'
mv "$root/user/Library/Application Support" "$work/elsewhere"
ln -s "$work/elsewhere" "$root/user/Library/Application Support"
# What is written goes through a pipe: files have no room.
{ (trap '' XFSZ; ulimit -f 0; exec "$bundle/Contents/MacOS/orvane-install" --root "$root" uninstall --yes --purge 2>&1)
  echo "status $?"; } | cat >"$work/out"
says "what fails" 'status 1'
says "lists that cannot be written" 没有写入偏好列表
[ -d "$work/elsewhere/Orvane" ] || fail "a link was followed"
bundle=$app
rm -rf "$root" && mv "$work/sound" "$root"

echo removal
sed -i s/com.tessal.Cogwen/another.identifier/ "$root/Applications/Cogwen.app/Contents/Info.plist"
echo Yes | orvane uninstall
expect "status" $? 0
says "what stays" '保留了用户词库和设置：.*Application Support/Orvane'
says "what is not ours" '保留了 .*Cogwen.app'
! are_listed || fail "entries are still in the lists"
grep -q '已停用 2 个' "$root/tmp/tessal_uninstaller_ui.log" || fail "no log of the uninstaller"
rm -r "$root/Applications/Cogwen.app"
mkdir "$root/Library/Input Methods/.Orvane.app.staging"
status_of 0 uninstall --yes
[ ! -e "$root/Library/Input Methods/.Orvane.app.staging" ] || fail "what a killed run has left stays"
library=$root/user/Library
mkdir -p "$library/Caches/$base" "$library/Preferences/$base.plist" "$library/Preferences/$base.settings.plist"
refused status_of 0 uninstall --yes --purge --json # nothing is left that needs rights
json_lines 'assert of("progress")[-1] == 1 and of("result", "command") == ["uninstall"]'
expect "what --purge leaves" "$(cd "$library" && find . -mindepth 2)" ""
status_of 3 install --no-wait
grep -q '启用路径：全新安装' "$ui_log" || fail "no fresh installation after a removal"

echo "manual page and completions"
manual=$app/Contents/Resources/man/man1/orvane-install.1 completions=$app/Contents/Resources/completions
! command -v mandoc >/dev/null || mandoc -Tlint -W warning "$manual" || fail "manual page"
! command -v zsh >/dev/null || zsh -n "$completions/_orvane-install" || fail "completion of zsh"
! command -v fish >/dev/null || fish -n "$completions/orvane-install.fish" || fail "completion of fish"
for command in "" install activate doctor uninstall; do
  # shellcheck disable=SC2086
  status_of 0 $command --help
  for option in $(grep -oE -- '--[a-z-]+' "$work/out"); do
    for file in "$manual" "$completions"/*orvane-install*; do
      grep -qE -- "(Fl -|-l |--)${option#--}\b" "$file" || fail "${file##*/} lacks $option"
    done
  done
done
offered=$(bash -c '. "$1" && COMP_WORDS=(orvane-install --root / uninstall --p) COMP_CWORD=4 && _orvane_install &&
  echo "${COMPREPLY[*]}"' bash "$completions/orvane-install.bash")
expect "what bash offers for --p" "$offered" --purge

finish
