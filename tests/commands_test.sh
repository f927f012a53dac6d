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
preferences() { find "$root/user" -path '*ByHost/com.apple.HIToolbox*'; }
# expect_listed TEXT: what the entries of each list name, in their order.
expect_listed() {
  python3 - "$(preferences)" "$1" <<'PYTHON' || fail "the lists of the preferences"
import plistlib, sys
lists = plistlib.load(open(sys.argv[1], "rb"))
for key in "AppleEnabledInputSources", "AppleSelectedInputSources", "AppleInputSourceHistory":
    names = [each if isinstance(each, str) else each.get("Input Mode", each.get("Bundle ID"))
             for each in lists[key]]
    assert " ".join(names) == sys.argv[2], (key, names)
PYTHON
}
# Puts neighbours around our entries, and one base entry more.
add_neighbours() {
  python3 - "$(preferences)" <<'PYTHON'
import plistlib, sys
path = sys.argv[1]
lists = plistlib.load(open(path, "rb"))
other = {"Bundle ID": "com.example.other", "InputSourceKind": "Keyboard Layout"}
for key in "AppleEnabledInputSources", "AppleSelectedInputSources", "AppleInputSourceHistory":
    base = {"Bundle ID": "com.tessal.inputmethod.Orvane", "InputSourceKind": "Keyboard Input Method"}
    lists[key] = [dict(other, **{"Bundle ID": "com.example.first"}), base, "text", *lists[key], other]
lists["AnotherKey"] = 7
plistlib.dump(lists, open(path, "wb"))
PYTHON
}
# script NAME COMMANDS: a bundle whose script of this name does these first.
script() {
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
  orvane $command --help && orvane $command --version || fail "help or version of \"$command\""
done
for arguments in "doctor --no-wait" "--no-wait doctor" "uninstall --json" "--json uninstall" "doctor extra" "instal" \
  "--bogus" "--root"; do
  # shellcheck disable=SC2086
  status_of 64 $arguments
  says "wrong use" Usage:
done

echo "outcomes"
SUDO_ASKPASS=/bin/false
outcome 2 未获得管理员授权
[ ! -s "$ui_log" ] && [ ! -e "$root/Library" ] || fail "a refused prompt has changed something"
SUDO_ASKPASS=/bin/true
script install 'exit 0'
outcome 1 未检测到已安装的输入法
script install 'echo 磁盘已满 >&2; exit 3'
outcome 1 安装失败
grep -q '管理员授权失败: 磁盘已满' "$ui_log" || fail "no reason in the log"
script install 'trap "echo stopped >&2; exit 9" TERM; hold'
outcome 1 安装失败 INT holding
grep -q '管理员授权失败: stopped' "$ui_log" || fail "what an interrupted script says is not logged"
script install 'trap "" TERM INT HUP; hold'
outcome 1 安装失败 TERM holding
script install ''
rm "$bundle/Contents/Resources/install.sh"
outcome 1 '找不到安装脚本 install.sh'

echo "a first installation, waited for"
rm -rf "$root" && mkdir "$root"
start
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
kill -TERM $front
wait_for_end $front
expect "status when asked to end" $? 3
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
status_of 0
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

echo "a second account"
start --home "$work/second" activate
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources --home "$work/second" allow $base || fail allow
wait_for_end $front
expect "status" $? 0
expect "current source of the second" "$(sources --home "$work/second" current)" $base.pinyin
[ ! -e "$opened" ] || fail "the settings were opened for the second account"
SUDO_ASKPASS=/bin/false
status_of 0 --home "$work/second" activate
sources --home "$work/second" disable $base
status_of 3 --home "$work/second" activate --no-wait
status_of 0 --home "$work/second" activate --no-wait --once
mv "$root/Library" "$root/away"
status_of 1 --home "$work/second" activate
says "bundle missing" '未检测到已安装的输入法'
mv "$root/away" "$root/Library"
SUDO_ASKPASS=/bin/true

echo diagnosis
status_of 1 doctor
status_of 0 doctor --machine
sources allow $base && sources select $base.pinyin
TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1 orvane
expect_listed $base.pinyin
picture "$root" >"$work/before"
status_of 0 doctor
says "all" '，0 项失败'
! changed || fail "doctor has changed something"
mkdir "$root/Library/Input Methods/.Orvane.app.staging"
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
rmdir "$root/Library/Input Methods/.Orvane.app.staging"

echo "removal, not wanted"
picture "$root" >"$work/before"
echo no | orvane uninstall
expect "status of no" $? 2
SUDO_ASKPASS=/bin/false
status_of 2 uninstall --yes
SUDO_ASKPASS=/bin/true
! changed || fail "something was removed"

echo removal
add_neighbours
rm -rf "$root/Applications/Cogwen.app"
mkdir -p "$root/Applications/Cogwen.app" "$root/user/Library/Application Support/Orvane"
echo y | orvane uninstall
expect "status" $? 0
says "what stays" '保留了用户词库和设置：.*Application Support/Orvane'
says "what is not ours" '保留了 .*Cogwen.app'
[ ! -e "$root/Library/Input Methods/Orvane.app" ] && [ ! -e "$root/Applications/Sondrel.app" ] &&
  [ -d "$root/Applications/Cogwen.app" ] && [ -d "$root/user/Library/Application Support/Orvane" ] ||
  fail "wrong things were removed: $(find "$root" -name '*.app')"
expect_listed "com.example.first text com.example.other"
grep -q 'Orvane removed' "$root/tmp/tessal_uninstaller.log" || fail "no log of the script"
grep -q 已停用 "$root/tmp/tessal_uninstaller_ui.log" || fail "no log of the uninstaller"
expect "current source" "$(sources current)" com.apple.keylayout.ABC
rmdir "$root/Applications/Cogwen.app"
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
for shell in zsh fish; do
  command -v $shell >/dev/null || { echo "no $shell here: its completion is not tried"; continue; }
  case $shell in
    zsh) $shell -f -c 'autoload -U compinit && compinit -D -u && . "$1" && [[ $_comps[orvane-install] = _orvane_install ]]' zsh \
      "$resources/completions/_orvane-install" ;;
    fish) $shell -c 'source $argv[1]; and complete -C "orvane-install uninstall --pu" | string match -q -- "--purge*"' \
      "$resources/completions/orvane-install.fish" ;;
  esac || fail "completion of $shell"
done

finish
