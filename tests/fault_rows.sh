# shellcheck shell=sh disable=SC2034,SC2154
# What the tables of faults share; sourced after support.sh.
#
# A row is "name | set-up | exit status | standard error | UI log | afterwards". The set-up and what must hold
# afterwards are commands. The two texts are looked for as they are; "-" stands for none.

# What gives a program mounts of its own; empty where there are none.
namespace='unshare --mount'
[ "$(id -u)" -eq 0 ] || namespace='unshare --map-root-user --mount'
$namespace true 2>/dev/null || namespace=

copy_bundle() { cp -R "$app" "$work/copy.app" && bundle=$work/copy.app resources=$bundle/Contents/Resources; }
installed() {
  SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/orvane-install" --root "$root" --no-wait >/dev/null 2>&1
  sources allow $base
}

begin_row() { # NAME SETUP...; false if it cannot be run here
  bundle=$app root=$work/$(echo "$1" | tr ' ,' '--') options=--no-wait skipped=''
  ui_log=$root/tmp/tessal_installer_ui.log
  rm -rf "$work/copy.app"
  mkdir -p "$root"
  eval "$2"
  [ -z "$skipped" ] || { echo "$1: not run, $skipped"; return 1; }
}

has() { [ "$2" = - ] || grep -qsF -- "$2" "$1"; }
end_row() { # NAME SETUP STATUS ERROR LOG AFTERWARDS; the run ended with $status
  expect "$1: exit status" $status "$3"
  has "$root.err" "$4" || fail "$1: standard error lacks \"$4\": $(cat "$root.err")"
  has "$ui_log" "$5" || fail "$1: UI log lacks \"$5\": $(head -c 2000 "$ui_log")"
  eval "$6" || fail "$1: afterwards, not so: $6"
}

trim() { printf %s "$1" | sed 's/^ *//; s/ *$//'; }
run_rows() { # NAME...: row for each line of descriptor 3, or for those of these names
  wanted=" $* "
  while IFS='|' read -r name setup status error log after <&3; do
    name=$(trim "$name")
    case $name in '' | '#'*) continue ;; esac
    case $wanted in "  " | *" $name "*) ;; *) continue ;; esac
    row "$name" "$(trim "$setup")" "$(trim "$status")" "$(trim "$error")" "$(trim "$log")" "$(trim "$after")" 3<&-
  done
}
