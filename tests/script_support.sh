# Shared by the tests of install.sh and uninstall.sh; sourced with the bundle that has both scripts as $1. They run below
# throw-away roots, with the shell whose path INSTALL_SHELL is.
# shellcheck shell=sh
# shellcheck disable=SC2015 # "A && B || return" is meant
# shellcheck disable=SC2034,SC2154 # the tests use what is set here

set -u
. "$(dirname "$0")/support.sh"

use_bundle "$1"
clean_up() { chattr -R -i "$work" 2>/dev/null; }
resources=$app/Contents/Resources
shell=${INSTALL_SHELL:-/bin/sh}
root="$work/a root"
copy="$work/a copy"
orvane="$root/Library/Input Methods/Orvane.app"
staging="$root/Library/Input Methods/.Orvane.app.staging"
sondrel="$root/Applications/Sondrel.app"
lock="$root/var/run/tessal_installer.lock"

run_cases() { # FUNCTION...
  for function in "$@"; do
    echo "$function"
    rm -rf "$root"
    "$function" || fail "$function: $(cat "$work/stderr")"
  done
  finish
}

# Not begun anew: that would be another shell, without our variables.
run_script() { # NAME RESOURCES
  # shellcheck disable=SC2086
  PATH=/usr/bin:/bin:/usr/sbin:/sbin INSTALL_ROOT=$root timeout -s KILL 60 $shell "$2/$1.sh" clean 2>"$work/stderr"
}
install() { run_script install "${1:-$resources}"; } # [RESOURCES]

same() { diff -r "$1" "$2" >/dev/null 2>&1; }
# The root holds what TREE holds, and no staging or leftover.
holds() { same "$root/Library" "$1/Library" && same "$root/Applications" "$1/Applications"; }
start_from() { rm -rf "$root" && cp -R "$1" "$root" && mkdir -p "$root/tmp" "$root/var/run"; }
copy_resources() { rm -rf "$copy" && cp -R "$resources" "$copy"; }
failed_because() { tail -n 1 "$log" | grep -q "^error: .*$1" && grep -q "$1" "$work/stderr"; }
# In a copy with functions for commands, the message on standard error may go where the command's would.
interrupted_by() { tail -n 1 "$log" | grep -q "^error: 被信号 SIG$1 中断"; }
lock_is_free() { [ ! -e "$lock" ] || flock -w 10 "$lock" true; }

# A copy whose scripts begin with these lines.
make_copy_with() { # LINES
  copy_resources
  for script in install uninstall; do
    { printf '%s\n' "$1" && cat "$resources/$script.sh"; } >"$copy/$script.sh"
  done
}

# The scripts as they would be if the N-th call of one of these commands came after a signal to the script.
make_stopping_copy() {
  # shellcheck disable=SC2016
  make_copy_with '
boundary() {
  echo >>"$STOPPED.calls"
  [ "$(wc -l <"$STOPPED.calls")" -lt "$STOP_AT" ] || [ -e "$STOPPED" ] ||
    { : >"$STOPPED"; kill -s "$STOP_SIGNAL" $$; }
}
perl() { case $2 in *rename*) boundary ;; esac; command perl "$@"; }
rm() { boundary; command rm "$@"; }
bsdtar() { boundary; command bsdtar "$@"; }
chmod() { boundary; command chmod "$@"; }
mkdir() { boundary; command mkdir "$@"; }
sync() { boundary; }'
}

stop_at() { # SCRIPT N SIGNAL; false if the run has no N-th boundary
  rm -f "$work/stopped" "$work/stopped.calls"
  (STOP_AT=$2 STOP_SIGNAL=$3 STOPPED="$work/stopped" run_script "$1" "$copy") 2>/dev/null
  status=$?
  [ -e "$work/stopped" ]
}

# Stops a run at each of its boundaries, by one signal after the other. The check looks at what each has left.
at_every_boundary() { # SCRIPT TREE SIGNALS CHECK
  make_stopping_copy
  n=1 signal=${3%% *}
  while start_from "$2" && stop_at "$1" "$n" "$signal"; do
    "$4" || { echo "$4: SIG$signal at boundary $n" && return 1; }
    set -- "$1" "$2" "${3#* } $signal" "$4"
    n=$((n + 1)) signal=${3%% *}
  done
  [ "$n" -gt 13 ]
}

for bundle in 'Library/Input Methods/Orvane' Applications/Sondrel Applications/Cogwen; do
  mkdir -p "$work/old/$bundle.app/Contents" && echo old >"$work/old/$bundle.app/Contents/old"
done
find "$work/old" -exec touch -t 202001010000 {} +
install "$resources" && cp -R "$root" "$work/new"
