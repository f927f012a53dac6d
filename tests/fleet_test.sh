#!/bin/sh
# The Ansible role against hosts that are folders of this machine, each with something of its own.
# usage: fleet_test.sh APP_BUNDLE   Exit status 77: no Ansible here.
set -u
. "$(dirname "$0")/support.sh"
command -v ansible-playbook >/dev/null || skip "no ansible-playbook here (Debian package ansible-core)"

use_bundle "$1"
fleet=$(realpath "$(dirname "$0")/../packaging/fleet")
umask 022
export HOME="$work/home" ANSIBLE_NOCOLOR=1 ANSIBLE_PIPELINING=1 ANSIBLE_BECOME_ALLOW_SAME_USER=1
mkdir -p "$HOME"

# With modes that none of the hosts should get.
mkdir "$work/wide" && cp -R "$app" "$work/wide" && chmod -R 6777 "$work/wide" &&
  (cd "$work/wide" && zip -qry -1 ../installer.zip .) || exit 1

bundle='Library/Input Methods/Orvane.app'
info=$bundle/Contents/Info.plist
fresh='fresh "1" $ \ 5% & `' # a path that has to be quoted
for host in old forced broken; do
  INSTALL_ROOT=$work/$host sh "$app/Contents/Resources/install.sh" || fail "installation on $host"
done
sed -i 's|<string>1.0.0</string>|<string>0.9.0</string>|' "$work/old/$info"
sed -i 's|<string>1.0.0</string>|<string>9.0.0</string>|' "$work/forced/$info"
rm "$work/broken/$bundle/Contents/MacOS/Orvane"
# A folder that others use too; one whose last run was killed while it unpacked; and one that leads elsewhere.
mkdir -p "$work/old/opt/orvane" "$work/broken/opt/orvane/Orvane Installer.app" "$work/planted/opt"
echo theirs >"$work/old/opt/orvane/file"
cp "$work/installer.zip" "$work/broken/opt/orvane"
ln -s "$work/elsewhere" "$work/planted/opt/orvane"
printf '#!/bin/sh\necho "Sorry, user ansible is not allowed to execute this as root." >&2\nexit 255\n' >"$work/refuse"
chmod 755 "$work/refuse"
# Nothing reaches these. What has to be refused before would do harm elsewhere.
far="ansible_connection=ssh ansible_ssh_executable=$work/refuse"
cat >"$work/inventory" <<INVENTORY
fresh       orvane_root='$work/$fresh'
old         orvane_root=$work/old
forced      orvane_root=$work/forced orvane_downgrade=true
broken      orvane_root=$work/broken orvane_activate=false
planted     orvane_root=$work/planted
slash       orvane_root=$work orvane_folder=//./ $far
above       orvane_root=$work orvane_folder=$work/old/opt/../.. $far
relative    orvane_root=relative orvane_folder=$work/relative $far
refuses     orvane_root=$work/refuses ansible_become=true ansible_become_exe=$work/refuse
unreachable $far
[all:vars]
ansible_connection=local
ansible_become=false
ansible_python_interpreter=/usr/bin/python3
orvane_archive=$work/installer.zip
INVENTORY

# play EXPECTED_STATUS OPTION...
play() {
  expected=$1
  shift
  ansible-playbook -f 8 -i "$work/inventory" "$fleet/orvane.yml" "$@" >"$work/out" 2>&1
  [ $? -eq "$expected" ] || { fail "another status of the play than $expected"; cat "$work/out"; }
}
says() { grep -qF "$1" "$work/out" || { fail "nothing says: $1"; cat "$work/out"; }; }

echo check
play 0 --check --limit fresh
says ' would be installed '
[ ! -e "$work/$fresh" ] || fail "check mode has changed something"

echo run
play 2
expect table "$(sed -n '/Table of all/,$s/^ *"\([^"]*[^" ]\) *",*$/\1/p' "$work/out" | tr -s ' ')" "HOST OUTCOME REASON
fresh installed
old updated
forced downgraded
broken repaired
planted failed $work/planted/opt/orvane is a link, or not of this user alone
slash failed these cannot be meant: orvane_folder '//./', orvane_root '$work'
above failed these cannot be meant: orvane_folder '$work/old/opt/../..', orvane_root '$work'
relative failed these cannot be meant: orvane_folder '$work/relative', orvane_root 'relative'
refuses refused Sorry, user ansible is not allowed to execute this as root.
unreachable unreachable the host cannot be reached"
expect "modes that are too wide" "$(find "$work"/*/opt ! -type l -perm /6022)" ""
expect "login entries" "$(find "$work" -name '*.desktop' | wc -l)" 3
quoted="$work/"'fresh \\"1\\" \\$ \\\\ 5%% & \\`'
grep -qxF "Exec=\"$quoted/opt/orvane/Orvane Installer.app/Contents/MacOS/orvane-install\" --root \"$quoted\" activate --once" \
  "$work/$fresh/etc/xdg/autostart/orvane-activate.desktop" || fail "a login entry that does not quote"

echo "run again"
lost="$work/forced/opt/orvane/Orvane Installer.app/Contents/Resources/uninstall.sh"
: >"$lost"
sed -i 's|<string>1.0.0</string>|<string>9.0.0</string>|' "$work/$fresh/$info"
touch "$work/before"
play 0 -e orvane_fail_on_problem=false --limit fresh,forced,planted
says 'fresh                    newer        9.0.0 is there, the archive has 1.0.0'
expect "what the second run changes" \
  "$(cd "$work" && find "$fresh/opt" "$fresh/Library" forced/Library */etc -cnewer before)" ""
[ -s "$lost" ] || fail "an installer that has lost its contents stays so"

echo removal
rm -r "$work/old/$bundle" # another removal has come as far as this
sed -i s/com.tessal.inputmethod/another/ "$work/forced/$info"
play 2 -e orvane_state=absent --limit fresh,old,forced
says 'forced                   failed       Orvane.app stays: it is not of this installer'
expect "what stays" "$(cd "$work" && find "$fresh" old -name '*.app' -o -path '*/opt/*' -o -name '*.desktop')" \
  "$(printf '%s\n' old/opt/orvane old/opt/orvane/file)"
[ -s "$lost" ] || fail "what is still there has no uninstaller any more"

echo "entries at the real places"
role=$fleet/roles/orvane
ansible localhost -c local -e "@$role/vars/main.yml" -e '{"orvane_root": "", "orvane_folder": "/a & <b>"}' -m debug \
  -a "msg={{ query('template', '$role/templates/launch_agent.plist.j2', '$role/templates/autostart.desktop.j2') }}" \
  >"$work/out" 2>&1
says '<string>/a &amp; &lt;b&gt;/Orvane Installer.app/Contents/MacOS/orvane-install</string>'
says 'orvane-install\" --root \"/\" activate --once'

finish
