#!/bin/sh
# Installs into the real places (--root /), for a user with a password, through the real sudo. The
# user, the rule and all that is written live in memory, in a root folder that only
# this test's processes see: nothing stays, however the test ends.
# usage: sudo_test.sh APP_BUNDLE   Exit status 77: it cannot run here.
set -u
. "$(dirname "$0")/support.sh"

if [ "${1:-}" != --inside ]; then
  as_root=
  if [ "$(id -u)" -ne 0 ]; then
    sudo -n true 2>/dev/null || skip "only root can set the test machine up"
    as_root='sudo -n'
  fi
  $as_root unshare --mount true 2>/dev/null || skip "no mount namespaces here"
  machine=$(mktemp -d) || exit 1
  trap 'rmdir "$machine"' EXIT
  # The first process ends all others with it, and the mounts end with the last one.
  $as_root unshare --mount --pid --mount-proc --fork --kill-child sh "$0" --inside "$(realpath "$1")" "$machine"
  exit
fi

app=$2 machine=$3
# What is there is seen, and what is written goes to memory.
mount -t tmpfs -o mode=755 tmpfs "$machine" && mkdir "$machine/upper" "$machine/work" &&
  mknod "$machine/upper/Library" c 0 0 && # for an overlay: it is not there
  mount -t overlay -o "lowerdir=/,upperdir=$machine/upper,workdir=$machine/work" overlay "$machine" 2>/dev/null ||
  skip "no overlays here"
mount --rbind /dev "$machine/dev" && mount -t proc proc "$machine/proc" &&
  mount -t tmpfs -o mode=1777 tmpfs "$machine/tmp" && mkdir "$machine/app" && cp -R "$app" "$machine/app/" || exit 1
app=/app/$(basename "$app")

inside() { chroot "$machine" "$@"; }
as_user() { inside su installer-tester -c "$1"; }

inside useradd --create-home --shell /bin/sh installer-tester || exit 1
readonly password='das richtige'
echo "installer-tester:$password" | inside chpasswd || exit 1
rule=$machine/etc/sudoers.d/installer-tester
echo 'installer-tester ALL=(ALL:ALL) ALL' >"$rule"
chmod 440 "$rule"

askpass() { # askpass NAME COMMAND
  printf '#!/bin/sh\necho "$1" >>/tmp/prompts\n%s\n' "$2" >"$machine/app/askpass-$1"
  chmod 755 "$machine/app/askpass-$1"
}
askpass right "cat /app/password"
askpass wrong "echo falsch"
askpass mistyped-then-closed 'if [ -e /tmp/mistyped ]; then exit 1; fi; : >/tmp/mistyped; echo falsch'
askpass asleep ': >/tmp/asleep; exec sleep 50'
echo "$password" >"$machine/app/password"
ui_log=$machine/tmp/tessal_installer_ui.log

# row NAME ENVIRONMENT EXPECTED_STATUS UI_LOG: the log is empty if that is "".
row() {
  rm -f "$ui_log"
  as_user "cd /tmp; timeout 100 env $2 '$app/Contents/MacOS/orvane-install' --root / --no-wait" >"$machine/out" 2>&1
  status=$?
  echo "$1: $status"
  expect "$1: exit status" $status "$3"
  if [ -z "$4" ]; then
    [ ! -s "$ui_log" ] || fail "$1: the UI log says $(cat "$ui_log")"
  else
    grep -q -- "$4" "$ui_log" || fail "$1: the UI log lacks \"$4\": $(cat "$ui_log")"
  fi
}

row "mistyped, then closed, in German" "LANGUAGE=de SUDO_ASKPASS=/app/askpass-mistyped-then-closed" 2 ''
row "wrong, in German" "LANGUAGE=de SUDO_ASKPASS=/app/askpass-wrong" 1 'incorrect password'
row "no display, no terminal" "-u DISPLAY setsid -w" 1 'a terminal is required'
row "a display that is not there" "DISPLAY=:99" 1 '无法询问密码'
mv "$rule" "$machine/rule"
row "not allowed, in German" "LANGUAGE=de SUDO_ASKPASS=/app/askpass-right" 2 ''
mv "$machine/rule" "$rule"

# interrupted WHAT EXPECTED_STATUS ASKPASS COMMAND...: the installer, once the command succeeds.
# The names below are those of this test's own processes: it sees no others.
interrupted() {
  what=$1 expected=$2 askpass=$3
  shift 3
  rm -f "$ui_log"
  as_user "SUDO_ASKPASS=/app/askpass-$askpass exec '$app/Contents/MacOS/orvane-install' --root /" >"$machine/out" 2>&1 & front=$!
  await "$what" "$@"
  pkill -INT -x orvane-install
  wait_for_end $front
  expect "interrupted at $what" $? "$expected"
}

interrupted "the prompt" 2 asleep test -e "$machine/tmp/asleep"
await "the end of the prompt" sh -c '! pgrep -x sudo && ! pgrep -f "[a]skpass-asleep"'
[ ! -e "$machine/Library" ] || fail "something was installed"

# In a terminal without a display, where sudo itself asks. su would give it a session
# without the terminal, and a shell that stays in front of it would die of the ^C.
typed() { # typed KEYS EXPECTED_STATUS
  : >"$machine/typed"
  {
    await "the prompt" grep -q 想要进行更改 "$machine/typed" >&2
    sleep 0.3
    # shellcheck disable=SC2059 # keys are escapes
    printf "$1"
    sleep 2
  } | timeout 60 script -qefc "exec env -u DISPLAY -u SUDO_ASKPASS HOME=/home/installer-tester chroot '$machine' \
    setpriv --reuid=installer-tester --regid=installer-tester --init-groups \
    '$app/Contents/MacOS/orvane-install' --root / --no-wait" "$machine/typed" >/dev/null
  expect "typed in the terminal: $1" $? "$2"
}
typed "das\003" 2
typed "$password\n" 3
! grep -rqF "$password" "$machine/typed" "$machine/tmp" || fail "the password stays"

row "right" SUDO_ASKPASS=/app/askpass-right 3 finish
expect "owner" "$(stat -c %U:%G "$machine/Library/Input Methods/Orvane.app")" root:root
grep -q 'Orvane Installer 想要进行更改' "$machine/tmp/prompts" || fail "another prompt"

# A script with root's rights is asked to stop, and cannot be killed, but the installer ends.
script=$machine$app/Contents/Resources/install.sh
readonly hold='echo holding >>/tmp/tessal_installer.log; sleep'
echo "trap 'echo stopped >&2; exit 9' TERM; $hold 30 & wait" >"$script"
interrupted "the script" 1 right grep -q holding "$ui_log"
expect "what is said of it" "$(tail -n 1 "$machine/out")" 安装被中断
echo "trap '' TERM INT HUP; $hold 9" >"$script"
interrupted "a script that goes on" 1 right grep -q holding "$ui_log"
grep -q 无法中止 "$machine/out" || fail "nothing says that the script goes on: $(cat "$machine/out")"

finish
