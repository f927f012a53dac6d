#!/bin/sh
# Installs without --root, for a user with a password, through the real sudo, in
# a copy-on-write view of this machine that leaves nothing behind.
# usage: sudo_test.sh APP_BUNDLE   Exit status 77: it cannot run here.
set -u
. "$(dirname "$0")/support.sh"

if [ "${1:-}" != --inside ]; then
  [ "$(id -u)" -eq 0 ] || skip "only root can set the test machine up"
  unshare --mount true 2>/dev/null || skip "no mount namespaces here"
  exec unshare --mount sh "$0" --inside "$1"
fi

app=$2
machine=$(mktemp -d) || exit 1
trap 'umount -R -l "$machine" 2>/dev/null; rmdir "$machine"' EXIT
mount -t tmpfs tmpfs "$machine" && mkdir "$machine/changes" "$machine/work" "$machine/root" &&
  mount -t overlay overlay \
    -o "lowerdir=/,upperdir=$machine/changes,workdir=$machine/work" "$machine/root" 2>/dev/null ||
  skip "no overlay file system here"
cp -R "$app" "$machine/root/opt/" || exit 1
app=/opt/$(basename "$app")
mount --rbind /proc "$machine/root/proc" && mount --rbind /dev "$machine/root/dev" &&
  mount -t tmpfs -o mode=1777 tmpfs "$machine/root/tmp" || exit 1

inside() { chroot "$machine/root" "$@"; }

inside useradd --create-home installer-tester || exit 1
echo 'installer-tester:das richtige' | inside chpasswd || exit 1
echo 'installer-tester ALL=(ALL:ALL) ALL' >"$machine/root/etc/sudoers.d/installer-tester"
chmod 440 "$machine/root/etc/sudoers.d/installer-tester"
askpass() { # askpass NAME COMMAND
  printf '#!/bin/sh\necho "$1" >>/tmp/prompts\n%s\n' "$2" >"$machine/root/opt/askpass-$1"
  chmod 755 "$machine/root/opt/askpass-$1"
}
askpass right "echo 'das richtige'"
askpass wrong "echo falsch"
askpass closed "exit 1"
install() { # install ASKPASS EXPECTED_STATUS
  echo "$1"
  inside su installer-tester -c "SUDO_ASKPASS=/opt/askpass-$1 timeout 100 \
    '$app/Contents/MacOS/orvane-install' --no-wait" >/dev/null 2>&1
  status=$?
  [ $status -eq "$2" ] || fail "exit status $status instead of $2"
}
ui_log=$machine/root/tmp/tessal_installer_ui.log

install closed 2
[ ! -s "$ui_log" ] || fail "the UI log says something about a refusal"
install wrong 1
grep -q '管理员授权失败: .*' "$ui_log" && grep -q 'incorrect password' "$ui_log" ||
  fail "the UI log does not say why"
[ ! -e "$machine/root/Library" ] || fail "something was installed"
install right 3
askpass mistyped-then-closed 'if [ -e /tmp/mistyped ]; then exit 1; fi; : >/tmp/mistyped; echo falsch'
install mistyped-then-closed 2
rm -f "$ui_log"
echo "right, and allowed"
inside su installer-tester -c "SUDO_ASKPASS=/opt/askpass-right timeout 100 \
  '$app/Contents/MacOS/orvane-install'" >/dev/null 2>&1 & front=$!
await "the waiting phase" grep -q trigger=enter-waiting "$ui_log"
sources() { inside su installer-tester -c "'$app/Contents/Helpers/input-sources' $*"; }
sources allow com.tessal.inputmethod.Orvane
wait $front
expect "exit status" $? 0
expect "current source" "$(sources current)" com.tessal.inputmethod.Orvane.pinyin
[ "$(stat -c %U:%G "$machine/root/Library/Input Methods/Orvane.app")" = root:root ] ||
  fail "the bundle is not root's"
grep -q finish "$machine/root/tmp/tessal_installer.log" || fail "no finish in the install log"
grep -q 'Orvane Installer 想要进行更改' "$machine/root/tmp/prompts" || fail "another prompt"

finish
