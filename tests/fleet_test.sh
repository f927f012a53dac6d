#!/bin/sh
# The Ansible role against five hosts, which are folders of this machine: one fresh, one with an old version, one broken,
# one that refuses, one that cannot be reached.  usage: fleet_test.sh APP_BUNDLE   Exit status 77: no Ansible here.
set -u
. "$(dirname "$0")/support.sh"
command -v ansible-playbook >/dev/null || skip "no ansible-playbook here (Debian package ansible-core)"
command -v ssh >/dev/null || skip "no ssh here (Debian package openssh-client)"

use_bundle "$1"
role=$(realpath "$(dirname "$0")/../packaging/fleet")
unset DISPLAY WAYLAND_DISPLAY
export HOME="$work/home" ANSIBLE_HOME="$work/ansible" ANSIBLE_LOCAL_TEMP="$work/ansible/tmp" ANSIBLE_NOCOLOR=1 \
  ANSIBLE_PIPELINING=1 ANSIBLE_RETRY_FILES_ENABLED=0 ANSIBLE_REMOTE_TMP="$work/ansible/remote" ANSIBLE_LOCALHOST_WARNING=0 \
  ANSIBLE_BECOME_ALLOW_SAME_USER=1
mkdir -p "$HOME"

# What the hosts need of the bundle.
slim="$work/slim/Orvane Installer.app/Contents"
mkdir -p "$slim/MacOS" && cp "$app/Contents/Info.plist" "$slim" && cp -R "$app/Contents/Resources" "$slim" &&
  cp "$app/Contents/MacOS/orvane-install" "$slim/MacOS" && (cd "$work/slim" && zip -qr -1 ../installer.zip .) || exit 1

bundle='Library/Input Methods/Orvane.app'
for host in fresh old broken refuses; do mkdir -p "$work/$host/tmp"; done
for host in old broken; do
  INSTALL_ROOT=$work/$host sh "$slim/Resources/install.sh" || fail "installation on $host"
done
sed -i 's|<string>1.0.0</string>|<string>0.9.0</string>|' "$work/old/$bundle/Contents/Info.plist"
rm "$work/broken/$bundle/Contents/MacOS/Orvane"
printf '#!/bin/sh\necho "Sorry, user ansible is not allowed to execute this as root." >&2\nexit 1\n' >"$work/refusing-sudo"
chmod 755 "$work/refusing-sudo"
cat >"$work/inventory" <<INVENTORY
fresh       ansible_connection=local orvane_root=$work/fresh
old         ansible_connection=local orvane_root=$work/old
broken      ansible_connection=local orvane_root=$work/broken
refuses     ansible_connection=local orvane_root=$work/refuses ansible_become=true ansible_become_exe=$work/refusing-sudo
unreachable ansible_connection=ssh ansible_host=127.0.0.1 ansible_port=1
[all:vars]
ansible_become=false
ansible_python_interpreter=/usr/bin/python3
ansible_ssh_common_args=-o BatchMode=yes -o ConnectTimeout=3
orvane_archive=$work/installer.zip
INVENTORY

# play EXPECTED_STATUS OPTION...
play() {
  expected=$1
  shift
  ansible-playbook -f 5 -i "$work/inventory" "$role/orvane.yml" "$@" >"$work/out" 2>&1
  status=$?
  [ $status -eq "$expected" ] || { fail "status $status of the play"; cat "$work/out"; }
}
# outcome HOST OUTCOME [REASON]: what the table says of it
outcome() {
  grep -qE "^ +\"$1 +$2 +${3:-\"}" "$work/out" || { fail "no $1 with $2 in the table"; sed -n '/Table of all/,$p' "$work/out"; }
}
outcomes() { # outcomes OF_FRESH OF_OLD OF_BROKEN
  outcome fresh "$1"
  outcome old "$2"
  outcome broken "$3"
  outcome refuses refused 'Sorry, user ansible is not allowed'
  outcome unreachable unreachable 'the host cannot be reached'
}
picture() { (cd "$work" && find fresh old broken refuses -path '*/tmp' -prune -o -printf '%p %m %T@ %s\n' | sort); }

echo check
picture >"$work/before"
play 0 --check --limit fresh
outcome fresh 'would be installed'
picture | diff "$work/before" - || fail "check mode has changed something"

echo run
play 2
outcomes installed updated repaired
for host in fresh old broken; do
  diff -r "$work/$host/$bundle" "$work/fresh/$bundle" || fail "$host holds another bundle"
  grep -q "orvane-install\" --root \"$work/$host\" activate --once" "$work/$host/etc/xdg/autostart/orvane-activate.desktop" ||
    fail "no login entry on $host"
done
grep -q '<string>1.0.0</string>' "$work/old/$bundle/Contents/Info.plist" || fail "old is old"
[ ! -e "$work/refuses/Library" ] || fail "installed where it was refused"

echo "run again"
picture >"$work/before"
play 2
outcomes unchanged unchanged unchanged
[ "$(grep -cE '^(fresh|old|broken|refuses) .* changed=0 ' "$work/out")" = 4 ] || fail "the second run changes something"
picture | diff "$work/before" - || fail "the second run has changed something"

if [ -e "$slim/Resources/uninstall.sh" ]; then
  echo removal
  play 0 -e orvane_state=absent --limit fresh,old,broken
  [ -z "$(find "$work/fresh" "$work/old" "$work/broken" -name '*.app' -o -name '*.desktop')" ] || fail "something stays"
  play 0 -e orvane_state=absent --limit fresh
  grep -q ' changed=0 ' "$work/out" || fail "the second removal changes something"
fi

finish
