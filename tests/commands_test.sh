#!/bin/sh
# The commands of orvane-install beside the plain installation: activation of a second account, diagnosis of broken
# installations, removal, lines of JSON, the manual page and the completions.  usage: commands_test.sh APP_BUNDLE
set -u
. "$(dirname "$0")/support.sh"

use_bundle "$1"
unset DISPLAY WAYLAND_DISPLAY
export SUDO_ASKPASS=/bin/true

orvane() { timeout 60 "$app/Contents/MacOS/orvane-install" --root "$root" "$@" >"$work/out" 2>"$work/err"; }
says() { grep -q -- "$2" "$work/out" "$work/err" || fail "$1: nothing said of \"$2\": $(cat "$work/out" "$work/err")"; }
status_of() { # status_of EXPECTED COMMAND...
  expected=$1
  shift
  orvane "$@"
  expect "status of $*" $? "$expected"
}
start_from() { rm -rf "$root" && cp -R "$work/$1" "$root"; }
picture() { (cd "$1" && find . -type d -name tmp -prune -o -printf '%p %m %T@ %s %l\n' | sort); }
installed_plist="$root/Library/Input Methods/Orvane.app/Contents/Info.plist"
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

echo usage
for command in "" install activate doctor uninstall; do
  # shellcheck disable=SC2086
  orvane $command --help && orvane $command --version || fail "help or version of \"$command\""
done
for arguments in "doctor --no-wait" "--no-wait doctor" "uninstall --json" "--json uninstall" "doctor extra" "instal" \
  "--bogus" "--root"; do
  # shellcheck disable=SC2086
  orvane $arguments
  expect "status of $arguments" $? 64
  grep -q Usage: "$work/err" || fail "no usage for $arguments"
done

echo "json lines of an installation"
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

echo "consent denied"
sources deny $base
status_of 1 doctor
says "consent denied" '没有启用输入法：已经请求过，但还没有允许，或被拒绝了'

echo "a second account"
second=$work/second
mkdir "$second"
rm -f "$root/user/Library/Application Support/Orvane/opened.log"
"$app/Contents/MacOS/orvane-install" --root "$root" --home "$second" activate >"$work/out" 2>&1 & front=$!
await "the waiting phase" grep -q '请将「澄枫输入法」添加到输入法列表' "$work/out"
sources --home "$second" allow $base || fail allow
wait $front
expect "status" $? 0
expect "current source of the second" "$(sources --home "$second" current)" $base.pinyin
expect "current source of the first" "$(sources current)" com.apple.keylayout.ABC
[ ! -e "$root/user/Library/Application Support/Orvane/opened.log" ] || fail "the settings were opened for the second account"
SUDO_ASKPASS=/bin/false
status_of 0 --home "$second" activate
sources --home "$second" disable $base
status_of 3 --home "$second" activate --no-wait
status_of 0 --home "$second" activate --no-wait --once
mv "$root/Library" "$root/away"
status_of 1 --home "$second" activate
says "bundle missing" '未检测到已安装的输入法'
mv "$root/away" "$root/Library"
SUDO_ASKPASS=/bin/true

echo "a sound installation"
sources allow $base && sources select $base.pinyin
TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1 orvane && orvane activate
expect_listed $base.pinyin
chmod 600 "$root/tmp/tessal_installer.log" # as another user's may be
cp -a "$root" "$work/sound"
picture "$root" >"$work/before"
status_of 0 doctor
says "all" '，0 项失败'
picture "$root" | diff "$work/before" - || fail "doctor has changed something"
SUDO_ASKPASS=/nowhere
status_of 1 doctor
SUDO_ASKPASS=/bin/true
says "no way to ask for a password" '无法取得管理员权限'
status_of 0 doctor --machine

# broken CHECKS TEXT SET-UP: the checks that fail after it, and what one of them says.
broken() {
  start_from sound
  eval "$3"
  status_of 1 doctor --json
  expect "after $3, what fails" "$(python3 - "$work/out" "$work/failing" <<'PYTHON'
import json, sys
events = [event for event in map(json.loads, open(sys.argv[1])) if event.get("level") == "fail"]
print(*(event["check"] for event in events))
print(*(event["text"] + event["next"] for event in events), sep="\n", file=open(sys.argv[2], "w"))
PYTHON
  )" "$1"
  grep -q -- "$2" "$work/failing" || fail "after $3, nothing said of \"$2\": $(cat "$work/failing")"
}
another_mode() {
  python3 -c 'import plistlib, sys
info = plistlib.load(open(sys.argv[1], "rb"))
info["ComponentInputModeDict"]["tsInputModeListKey"] = {"another.mode": {}}
plistlib.dump(info, open(sys.argv[1], "wb"))' "$installed_plist"
}
replace() { sed -i "s|<string>$1</string>|<string>$2</string>|" "$3"; }
echo "broken installations"
mode='mode modeSource modeEnabled selectCapable'
lists='AppleEnabledInputSources AppleSelectedInputSources AppleInputSourceHistory'
broken "$mode" 'Info.plist 里没有拼音模式' another_mode
broken "$mode" '找不到拼音模式的输入源' another_mode
broken enabled 曾经启用过，后来被拒绝或停用了 'sources deny $base'
broken enabled 或后来被拒绝、停用了 'sources deny $base; rm "$root/tmp/tessal_installer_ui.log"'
broken bundle 没有安装 'rm -r "$root/Library/Input Methods/Orvane.app"'
broken "$lists" 'AppleEnabledInputSources：有一条拼音模式的条目属于别的程序包「com.example.foreign」' \
  'replace $base com.example.foreign "$(preferences)"'
broken leftovers .Orvane.app.staging 'mkdir "$root/Library/Input Methods/.Orvane.app.staging"'
broken "identifier registered $lists" '缺少 inputmethod 一段' 'replace $base com.tessal.Orvane "$installed_plist"'
start_from sound
echo 'error: Cogwen.zip is missing' >>"$root/tmp/tessal_installer.log"
status_of 0 doctor
says "a failed run" 上一次安装失败了

if [ -e "$app/Contents/Resources/uninstall.sh" ]; then
  start_from sound
  echo "removal, refused"
  picture "$root" >"$work/before"
  SUDO_ASKPASS=/bin/false
  status_of 2 uninstall --yes
  picture "$root" | diff "$work/before" - || fail "a refused prompt has changed something"
  echo no | orvane uninstall
  expect "status of no" $? 2
  picture "$root" | diff "$work/before" - || fail "a no has changed something"
  SUDO_ASKPASS=/bin/true

  echo removal
  add_neighbours
  rm -rf "$root/Applications/Cogwen.app" && mkdir -p "$root/Applications/Cogwen.app" "$root/user/Library/Application Support/Orvane"
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

  echo "installed again"
  status_of 3 install --no-wait
  grep -q '启用路径：全新安装' "$root/tmp/tessal_installer_ui.log" || fail "no fresh installation"
  expect "consent" "$(sources list | grep -c "^$base	disabled asked")" 1
  SUDO_ASKPASS=/bin/true status_of 0 uninstall --yes
fi

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
expect "options of doctor" "$(complete_bash --root / doctor --ma)" --machine
expect "options of uninstall" "$(complete_bash uninstall --p)" --purge
expect "folders" "$(complete_bash --root "$resources/comp")" "$resources/completions"
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
