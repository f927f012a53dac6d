#!/bin/sh
# uninstall_script_test.sh RESOURCES: runs the uninstall.sh that lies in RESOURCES, on what install.sh has left.

# shellcheck disable=SC2015 # "A && B || return" is meant

# shellcheck source-path=SCRIPTDIR source=script_support.sh
. "$(dirname "$0")/script_support.sh"
log="$root/tmp/tessal_uninstaller.log"

uninstall() { run_script uninstall "${1:-$resources}"; } # [RESOURCES]
nothing_left() { [ -z "$(find "$root/Library" "$root/Applications" -name '*.app*')" ]; }

everything() {
  start_from "$work/new" && uninstall && nothing_left && [ "$(cat "$log")" = 'kill Orvane
remove Orvane
Orvane removed
kill Sondrel
remove Sondrel
Sondrel removed
kill Cogwen
remove Cogwen
Cogwen removed
finish' ] && uninstall && nothing_left && install && holds "$work/new"
}

picture() { tar -c -C "$root/Applications" Sondrel.app | cksum; }
# What must be kept is put in Sondrel's place; the others go.
keeps() { # WHAT
  plist="$sondrel/Contents/Info.plist"
  start_from "$work/new" && copy_resources || return 1
  case $1 in
    'another identifier') sed -i s/com.tessal.Sondrel/com.tessal.Sondrel2/ "$plist" ;;
    'a FIFO as property list') rm "$plist" && mkfifo "$plist" ;;
    'a file') rm -r "$sondrel" && echo precious >"$sondrel" ;;
    'a link') mv "$sondrel" "$work/linked.app" && ln -s "$work/linked.app" "$sondrel" ;;
    'no archive that declares it') rm "$copy/Sondrel.zip" ;;
  esac && before=$(picture) && uninstall "$copy" && [ "$(picture)" = "$before" ] &&
    [ "$(find "$root/Library" "$root/Applications" -name '*.app*')" = "$sondrel" ]
}

somebody_elses() {
  for what in 'another identifier' 'a FIFO as property list' 'a file' 'a link' 'no archive that declares it'; do
    keeps "$what" || { echo "$what" && return 1; }
  done
}

# A run of install.sh that was killed left the old bundle in staging. A folder of that name that somebody else has made
# is no such thing.
killed_installation() {
  start_from "$work/new" && mkdir -p "$staging/old" "${staging%staging}leftover.3" && mv "$sondrel" "$staging/old" &&
    uninstall && nothing_left && grep -q 'remove Sondrel' "$log" || return 1
  [ "$(id -u)" -eq 0 ] || return 0
  start_from "$work/new" && mkdir -p "$staging/old" && mv "$sondrel" "$staging/old" && chown -R nobody "$staging" &&
    : >"$log" && uninstall && nothing_left && ! grep -q Sondrel "$log"
}

# Stopped at any step: a bundle is there and whole, or gone; the next run does the rest.
stopped() {
  make_stopping_copy
  for signal in KILL TERM; do
    n=1
    while start_from "$work/new" && stop_at uninstall "$n" "$signal"; do
      for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
        [ ! -e "$root/$bundle" ] || same "$root/$bundle" "$work/new/$bundle" ||
          { echo "$bundle, SIG$signal at $n" && return 1; }
      done
      if [ $signal = TERM ] && [ "$status" -ne 0 ]; then
        interrupted_by TERM && lock_is_free && [ -z "$(find "$root" -name '.*.app.*')" ]
      fi && uninstall && nothing_left || { echo "SIG$signal at $n" && return 1; }
      n=$((n + 1))
    done
    [ "$n" -gt 13 ] || return 1
  done
}

run_case 'everything goes, and can be installed again' everything
run_case "somebody else's application of that name stays" somebody_elses
run_case 'what a killed installation left goes too' killed_installation
run_case 'stopped at any step' stopped
[ "$failures" -eq 0 ]
