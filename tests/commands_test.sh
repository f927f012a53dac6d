#!/bin/sh
# The commands of orvane-install, on real processes, files and logs: how an installation may end, activation of a second
# account, diagnosis, removal, lines of JSON, the manual page and the completions.  usage: commands_test.sh APP_BUNDLE
# shellcheck disable=SC2016 # scripts and patterns have dollars of their own
set -u
. "$(dirname "$0")/support.sh"

use_bundle "$1"
mkdir -p "$root" "$work/second"
unset DISPLAY WAYLAND_DISPLAY
export SUDO_ASKPASS=/bin/true
bundle=$app
ui_log=$root/tmp/tessal_installer_ui.log

orvane() { timeout 60 "$bundle/Contents/MacOS/orvane-install" --root "$root" "$@" >"$work/out" 2>"$work/err"; }
start() {
  : >"$work/out" # what an earlier run said must not be taken for this one's
  "$bundle/Contents/MacOS/orvane-install" --root "$root" "$@" >"$work/out" 2>"$work/err" & front=$!
}
says() { grep -q -- "$2" "$work/out" "$work/err" || fail "$1: nothing said of \"$2\": $(cat "$work/out" "$work/err")"; }
status_of() { # status_of EXPECTED COMMAND...
  expected=$1
  shift
  orvane "$@"
  expect "status of $*" $? "$expected"
}
picture() { (cd "$1" && find . -type d -name tmp -prune -o -printf '%p %m %T@ %s %l\n' | sort); }
changed() { picture "$root" | diff "$work/before" - >&2; ! picture "$root" | cmp -s "$work/before" -; }
are_listed() { grep -qa $base "$root"/user/Preferences/ByHost/com.apple.HIToolbox*; }
# scripted NAME COMMANDS: a bundle whose script of this name does these first.
scripted() {
  rm -rf "$work/copy.app"
  cp -R "$app" "$work/copy.app"
  bundle=$work/copy.app
  {
    echo 'hold() { echo holding >>"$INSTALL_ROOT/tmp/tessal_installer.log"; sleep 50 & wait; }'
    echo "$2"
    cat "$app/Contents/Resources/$1.sh"
  } >"$bundle/Contents/Resources/$1.sh"
}
# outcome STATUS TEXT [SIGNAL LOG]: how an installation ends that gets the signal once the UI log says so.
outcome() {
  rm -f "$ui_log"
  start --no-wait
  if [ $# -gt 2 ]; then
    await "$4" grep -q -- "$4" "$ui_log"
    kill "-$3" $front
  fi
  wait_for_end $front
  expect "status of \"$2\"" $? "$1"
  says outcome "$2"
  await "no process left" nothing_left || cat "$work/left"
  bundle=$app
}

echo usage
for command in "" install activate doctor uninstall; do
  # shellcheck disable=SC2086
  orvane $command --version && orvane $command -h || fail "help or version of \"$command\""
  says "help of \"$command\"" "^Usage: orvane-install ${command:-.OPTIONS}"
  [ -z "$command" ] || ! grep -q 'Without a command' "$work/out" || fail "$command is said to be no command"
done
for arguments in "doctor --no-wait" "--no-wait doctor" "uninstall --json" "--json uninstall" "doctor extra" "instal" \
  "--bogus" "--root"; do
  # shellcheck disable=SC2086
  status_of 64 $arguments
  says "wrong use" Usage:
done
"$app/Contents/MacOS/orvane-install" --root "$work/none" doctor 2>/dev/null
expect "status of a mistyped root" $? 64
[ ! -e "$work/none" ] || fail "a mistyped root was made"
"$app/Contents/MacOS/orvane-install" --root "$root" doctor --json 2>"$work/err" >/dev/full
expect "status without room for the output" $? 1
says "no room" 'could be written'

echo "outcomes"
SUDO_ASKPASS=/bin/false
outcome 2 未获得管理员授权
[ ! -s "$ui_log" ] && [ ! -e "$root/Library" ] || fail "a refused prompt has changed something"
SUDO_ASKPASS=$work/none # a prompt that does not come is not refused
outcome 1 安装失败
SUDO_ASKPASS=/bin/true
scripted install 'exit 0'
outcome 1 未检测到已安装的输入法
scripted install 'printf "磁盘已满\033]0;x" >&2; exit 3'
outcome 1 '^磁盘已满␛]0;x'
scripted install 'trap "echo stopped >&2; exit 9" TERM; hold'
outcome 1 安装被中断 INT holding
says "an interrupted script" stopped
scripted install 'trap "" TERM INT HUP; hold'
outcome 1 安装被中断 TERM holding
scripted install ''
rm "$bundle/Contents/Resources/install.sh"
outcome 1 '找不到安装脚本 install.sh'

echo "a first installation, waited for"
rm -rf "$root" && mkdir "$root"
start
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources allow $base || fail allow
wait_for_end $front
expect status $? 0
says success 安装成功
expect "current source" "$(sources current)" $base.pinyin
opened="$root/user/Library/Application Support/Orvane/opened.log"
await "the settings" grep -q opened "$opened"
info="$root/Library/Input Methods/Orvane.app/Contents/Info.plist"
sed -i 's|<string>1.0.0</string>|<string>99.0</string>|' "$info"
status_of 0
says "an older version" '99.0 比安装器里的 1.0.0 新'
expect "settings opened" "$(cat "$opened")" opened
rm "$opened"

echo "json lines of an installation"
sources deny $base
status_of 3 install --no-wait --json
python3 - "$work/out" <<'PYTHON' || fail "the lines: $(cat "$work/out")"
import json, sys
events = [json.loads(line) for line in open(sys.argv[1])]
fields = {"phase": {"phase"}, "progress": {"progress"}, "status": {"status"}, "message": {"level", "text"},
          "result": {"command", "exitStatus"}}
for event in events:
    assert set(event) - {"event"} == fields[event["event"]], event
assert events[-1] == {"event": "result", "command": "install", "exitStatus": 3}, events[-1]
of = lambda kind: [event[kind] for event in events if event["event"] == kind]
assert of("phase") == ["script", "activation"], of("phase")
assert of("status") == ["installing", "waitingEnable"], of("status")
assert of("progress")[-1] == 1 and all(0 <= value <= 1 for value in of("progress")), of("progress")
PYTHON

echo "a narrow terminal, and one that can do nothing"
terminal() { script -qefc "stty cols 40; TERM=$1 '$app/Contents/MacOS/orvane-install' --root '$root' $2" /dev/null </dev/null; }
terminal xterm --no-wait | tr '\r' '\n' | iconv -t GB18030 >"$work/out" # in this code, bytes are columns
LC_ALL=C grep -q ']' "$work/out" || fail "no bar"
LC_ALL=C awk '{ sub(/^\033\[K/, "") } length > 40 { bad = 1 } END { exit bad }' "$work/out" || fail "a line is too long"
terminal dumb doctor >"$work/out"
! grep -q "$(printf '\033')" "$work/out" || fail "escapes for a terminal that knows none"

echo "a second account"
status_of 3 --home "$work/second" activate --no-wait --once
status_of 3 --home "$work/second" activate --no-wait --once
stamp="$work/second/Library/Application Support/Orvane Installer/activated"
mkdir -p "$(dirname "$stamp")"
echo mine >"$work/own"
ln -s "$work/own" "$stamp"
start --home "$work/second" activate
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources --home "$work/second" allow $base || fail allow
wait_for_end $front
expect "status" $? 0
expect "current source of the second" "$(sources --home "$work/second" current)" $base.pinyin
[ ! -e "$opened" ] || fail "the settings were opened for the second account"
expect "the file behind a link" "$(cat "$work/own")" mine
rm "$stamp"
SUDO_ASKPASS=/bin/false
status_of 0 --home "$work/second" activate
sources --home "$work/second" deny $base
status_of 0 --home "$work/second" activate --no-wait --once
start --home "$work/second" activate --go-enable
await "the keyboard settings" grep -qF 'openKeyboardSettings(): ' "$ui_log"
kill -TERM $front
wait_for_end $front
expect "status" $? 3
SUDO_ASKPASS=/bin/true

echo diagnosis
rm "$ui_log" && mkfifo "$ui_log" # nothing waits for what comes out of it
status_of 1 doctor
rm "$ui_log"
status_of 0 doctor --machine
sources allow $base
sed -i.whole "s/$base.pinyin/another.mode/" "$info"
status_of 1 activate
says "no mode" 拼音模式没有启用
mv "$info.whole" "$info"
sources select $base.pinyin
TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1 orvane
are_listed || fail "no entries in the lists"
picture "$root" >"$work/before"
status_of 0 doctor
says "all" '，0 项失败'
! changed || fail "doctor has changed something"
mkdir "$root/Library/Input Methods/.Orvane.app.staging" "$root/Library/Input Methods/.Orvane.app.$(printf 'a\377')"
status_of 1 doctor --json
python3 - "$work/out" <<'PYTHON' || fail "the lines: $(cat "$work/out")"
import json, sys
events = [json.loads(line) for line in open(sys.argv[1])]
assert events[-1] == {"event": "result", "command": "doctor", "exitStatus": 1}, events[-1]
findings = [event for event in events if "check" in event]
assert {event["scope"] for event in findings} == {"machine", "user"}
assert all(event.keys() == {"event", "level", "scope", "check", "text", "next", "value"} for event in findings)
assert [event["check"] for event in findings if event["level"] == "fail"] == ["leftovers"]
PYTHON
rmdir "$root/Library/Input Methods/.Orvane.app".*

echo "removal, not wanted"
picture "$root" >"$work/before"
for answer in 'no\n' '\n' ''; do
  # shellcheck disable=SC2059 # it is a format
  printf "$answer" | orvane uninstall
  expect "status of \"$answer\"" $? 2
done
SUDO_ASKPASS=/bin/false
status_of 2 uninstall --yes
SUDO_ASKPASS=/bin/true
! changed || fail "something was removed"

echo "removal that fails"
cp -a "$root" "$work/sound"
scripted uninstall 'exit 0'
status_of 1 uninstall --yes
says "a bundle that stays" 输入法没有移除
scripted uninstall 'rm -rf "$INSTALL_ROOT/Library" "$INSTALL_ROOT/Applications"; exit 0'
mv "$root/user/Library/Application Support" "$work/elsewhere"
ln -s "$work/elsewhere" "$root/user/Library/Application Support"
# What is written goes through a pipe: files have no room.
{ (trap '' XFSZ; ulimit -f 0; exec "$bundle/Contents/MacOS/orvane-install" --root "$root" uninstall --yes --purge 2>&1)
  echo "status $?"; } | cat >"$work/out"
says "what fails" 'status 1'
says "lists that cannot be written" 没有写入偏好列表
says "a folder that is a link" 是链接
[ -d "$work/elsewhere/Orvane" ] || fail "a link was followed"
bundle=$app
rm -rf "$root" && mv "$work/sound" "$root"

echo removal
rm -rf "$root/Applications/Cogwen.app"
mkdir -p "$root/Applications/Cogwen.app" "$root/user/Library/Application Support/Orvane"
echo Yes | orvane uninstall
expect "status" $? 0
says "what stays" '保留了用户词库和设置：.*Application Support/Orvane'
says "what is not ours" '保留了 .*Cogwen.app'
[ ! -e "$root/Library/Input Methods/Orvane.app" ] && [ ! -e "$root/Applications/Sondrel.app" ] &&
  [ -d "$root/Applications/Cogwen.app" ] && [ -d "$root/user/Library/Application Support/Orvane" ] ||
  fail "wrong things were removed: $(find "$root" -name '*.app')"
! are_listed || fail "entries are still in the lists"
grep -q '已停用 2 个' "$root/tmp/tessal_uninstaller_ui.log" || fail "no log of the uninstaller"
expect "current source" "$(sources current)" com.apple.keylayout.ABC
rmdir "$root/Applications/Cogwen.app"
mkdir "$root/Library/Input Methods/.Orvane.app.staging"
status_of 0 uninstall --yes
[ ! -e "$root/Library/Input Methods/.Orvane.app.staging" ] || fail "what a killed run has left stays"
SUDO_ASKPASS=/bin/false # nothing is left that needs rights
status_of 0 uninstall --yes --purge --json
expect "what --purge leaves" "$(ls "$root/user/Library/Application Support")" ""
SUDO_ASKPASS=/bin/true
status_of 3 install --no-wait
grep -q '启用路径：全新安装' "$ui_log" || fail "no fresh installation after a removal"

echo "manual page and completions"
resources=$app/Contents/Resources
command -v mandoc >/dev/null && { mandoc -Tlint -W warning "$resources/man/man1/orvane-install.1" || fail "manual page"; }
for option in $(for command in install activate doctor uninstall; do "$app/Contents/MacOS/orvane-install" $command --help; done |
  grep -oE -- '--[a-z-]+' | sort -u); do
  grep -q -- "Fl -${option#--}\b" "$resources/man/man1/orvane-install.1" || fail "the manual page lacks $option"
  for completion in orvane-install.bash _orvane-install orvane-install.fish; do
    grep -qE -- "(-l |--)${option#--}\b" "$resources/completions/$completion" || fail "$completion lacks $option"
  done
done
complete_bash() { # complete_bash WORD...: what bash offers for the last word
  bash -c '. "$1" && shift && COMP_WORDS=(orvane-install "$@") COMP_CWORD=$# && _orvane_install && echo "${COMPREPLY[*]}"' \
    bash "$resources/completions/orvane-install.bash" "$@"
}
expect "commands" "$(complete_bash i)" install
expect "options after a root" "$(complete_bash --root doctor --ma)" ""
expect "options of uninstall" "$(complete_bash --root / uninstall --p)" --purge
for script in zsh:_orvane-install fish:orvane-install.fish; do
  command -v "${script%%:*}" >/dev/null || continue
  "${script%%:*}" -n "$resources/completions/${script#*:}" || fail "completion of ${script%%:*}"
done

finish
