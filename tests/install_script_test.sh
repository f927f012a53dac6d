#!/bin/sh
# install_script_test.sh RESOURCES: runs the install.sh that lies in RESOURCES beside its archives, below throw-away
# roots. INSTALL_SHELL names another shell to run it with.

# shellcheck disable=SC2015,SC2016 # "A && B || return" is meant, and so are dollars in single quotes

set -u
export LC_ALL=C
resources=$(cd -- "$1" && pwd)
shell=${INSTALL_SHELL:-/bin/sh}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root="$work/a root"
copy="$work/a copy"
log="$root/tmp/tessal_installer.log"
orvane="$root/Library/Input Methods/Orvane.app"
failures=0

run_case() { # NAME FUNCTION
  rm -rf "$root"
  if "$2"; then
    echo "ok: $1"
  else
    echo "FAILED: $1"
    sed 's/^/  | /' "$work/stderr"
    failures=$((failures + 1))
  fi
}

install() { # [RESOURCES]
  # shellcheck disable=SC2086
  INSTALL_ROOT=$root $shell "${1:-$resources}/install.sh" 2>"$work/stderr"
}

same() { diff -r "$1" "$2" >/dev/null 2>&1; }
# The root holds what TREE holds, and no staging or backup.
holds() { same "$root/Library" "$1/Library" && same "$root/Applications" "$1/Applications"; }
start_from() { rm -rf "$root" && cp -R "$1" "$root" && mkdir -p "$root/tmp"; }
copy_resources() { rm -rf "$copy" && cp -R "$resources" "$copy"; }
failed_because() { tail -n 1 "$log" | grep -q "^error: .*$1" && grep -q "$1" "$work/stderr"; }

# The script as it would be if the N-th call of one of these commands came after a signal to itself.
make_stopping_copy() {
  copy_resources
  {
    echo 'calls=0; boundary() { calls=$((calls + 1))
      [ "$calls" -ne "$STOP_AT" ] || { : >"$STOPPED"; kill -s "$STOP_SIGNAL" $$; }; }'
    for command in mv rm unzip chmod touch mkdir; do
      echo "$command() { boundary; command $command \"\$@\"; }"
    done
    cat "$resources/install.sh"
  } >"$copy/install.sh"
}

stop_at() { # N SIGNAL; false if the run has no N-th boundary
  rm -f "$work/stopped"
  (STOP_AT=$1 STOP_SIGNAL=$2 STOPPED="$work/stopped" install "$copy") 2>/dev/null
  status=$?
  [ -e "$work/stopped" ]
}

fresh() {
  install && cp -R "$root" "$work/new" && [ "$(cat "$log")" = 'unzip package
kill Orvane
move app bundle to destination directory
permission change successful
install Sondrel
move Sondrel to Applications
Sondrel installed successfully
install Cogwen
move Cogwen to Applications
Cogwen installed successfully
finish' ] && [ -x "$orvane/Contents/MacOS/OrvaneSettings.app/Contents/MacOS/OrvaneSettings" ] &&
    [ -d "$root/Applications/Cogwen.app" ] && [ -z "$(find "$root" -name '.*.app.*' -o -perm /022)" ]
}

overwrite() {
  start_from "$work/old" && install && holds "$work/new" && [ -n "$(find "$orvane" -prune -mmin -1)" ] || return 1
  copy_resources && rm "$copy/Sondrel.zip" && start_from "$work/old" && install "$copy" &&
    same "$root/Applications/Sondrel.app" "$work/old/Applications/Sondrel.app" && ! grep -q Sondrel "$log"
}

bad_checksum() {
  copy_resources && echo >>"$copy/Cogwen.zip" && ! install "$copy" && failed_because Cogwen.zip &&
    [ "$(ls "$root")" = tmp ] || return 1
  copy_resources && sed -i /Sondrel/d "$copy/SHA256SUMS" && ! install "$copy" && failed_because Sondrel.zip &&
    [ "$(ls "$root")" = tmp ]
}

# Listed rightly, but without its bundle, or with a member that would land elsewhere.
bad_last_archive() {
  mkdir -p "$work/zip/Cogwen.app" && touch "$work/zip/other" "$work/outside" || return 1
  for members in other 'Cogwen.app ../outside'; do
    # shellcheck disable=SC2086
    copy_resources && rm "$copy/Cogwen.zip" && (cd "$work/zip" && zip -q "$copy/Cogwen.zip" $members) &&
      (cd "$copy" && sha256sum Orvane.zip Sondrel.zip Cogwen.zip >SHA256SUMS) || return 1
    start_from "$work/old" && ! install "$copy" && failed_because Cogwen.zip && holds "$work/old" || return 1
    rm -rf "$root" && ! install "$copy" && [ -z "$(find "$root" -name '*.app*')" ] || return 1
  done
}

in_the_way() {
  mkdir -p "${orvane%/*}" "$root/Applications" "$work/elsewhere" && touch "$orvane" &&
    ln -s "$work/elsewhere" "$root/Applications/Sondrel.app" &&
    ln -s "$work/elsewhere" "$root/Applications/.Cogwen.app.staging" &&
    install && holds "$work/new" && [ -z "$(ls "$work/elsewhere")" ]
}

log_in_the_way() {
  for put in "ln -s ../../victim" "ln $work/victim" "ln -s $work/missing" mkfifo mkdir; do
    rm -rf "$root" && mkdir -p "$root/tmp" && echo precious >"$work/victim" && $put "$log" || return 1
    install && holds "$work/new" && [ "$(cat "$work/victim")" = precious ] && [ ! -e "$work/missing" ] || return 1
  done
}

log_of_another_user() {
  mkdir -p "$root/tmp" && chmod 1777 "$root/tmp" && : >"$log" && chown nobody "$log" &&
    install && grep -q finish "$log"
}

signals() {
  make_stopping_copy
  for signal in TERM HUP INT PIPE; do
    n=5
    while start_from "$work/old" && stop_at "$n" "$signal"; do
      # The last boundaries lie after the point of no return.
      if [ "$status" -eq 0 ]; then holds "$work/new"; else holds "$work/old" && failed_because "SIG$signal"; fi ||
        { echo "SIG$signal at boundary $n" && return 1; }
      [ "$signal" = TERM ] && n=$((n + 1)) || n=$((n + 7))
    done
    [ "$n" -gt 20 ] || return 1
  done
}

whole_or_set_aside() { # TREE that the killed run found
  for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
    if [ -e "$root/$bundle" ]; then
      same "$root/$bundle" "$work/new/$bundle" || same "$root/$bundle" "$1/$bundle"
    elif [ -e "$1/$bundle" ]; then
      same "$root/${bundle%/*}/.${bundle##*/}.backup" "$1/$bundle"
    fi || return 1
  done
}

# Killed, killed again during the repair, then left alone.
killed() {
  make_stopping_copy
  for before in "$work/old" "$work/nothing"; do
    n=1
    while start_from "$before" && stop_at "$n" KILL; do
      whole_or_set_aside "$before" && { ! stop_at 4 KILL || whole_or_set_aside "$before"; } &&
        install && holds "$work/new" || { echo "killed at boundary $n" && return 1; }
      n=$((n + 1))
    done
    [ "$n" -gt 20 ] || return 1
  done
}

two_at_once() {
  start_from "$work/old" && { install & } && install && wait $! && holds "$work/new" && [ "$(grep -c finish "$log")" = 2 ]
}

mkdir "$work/nothing"
for bundle in 'Library/Input Methods/Orvane' Applications/Sondrel Applications/Cogwen; do
  mkdir -p "$work/old/$bundle.app/Contents" && echo old >"$work/old/$bundle.app/Contents/old"
done
find "$work/old" -exec touch -t 202001010000 {} +

run_case 'fresh installation' fresh
run_case 'overwrite, and one without Sondrel' overwrite
run_case 'checksums are checked before anything is touched' bad_checksum
run_case 'a failure in the last bundle puts all of them back' bad_last_archive
run_case 'files and links in the way are replaced, not followed' in_the_way
run_case 'only a plain log file is written, and its lack stops nothing' log_in_the_way
[ "$(id -u)" -ne 0 ] || run_case "another user's log in a sticky folder" log_of_another_user
run_case 'a signal at any step puts everything back' signals
run_case 'SIGKILL at any step leaves what the next run repairs' killed
run_case 'two at once' two_at_once
[ "$failures" -eq 0 ]
