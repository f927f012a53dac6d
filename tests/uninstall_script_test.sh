#!/bin/sh
# uninstall_script_test.sh APP_BUNDLE: runs the bundle's uninstall.sh on what its install.sh has left.

# shellcheck disable=SC2015 # "A && B || return" is meant

# shellcheck source-path=SCRIPTDIR source=script_support.sh
. "$(dirname "$0")/script_support.sh"
log="$root/tmp/tessal_uninstaller.log"

uninstall() { run_script uninstall "${1:-$resources}"; } # [RESOURCES]
all_gone() { [ -z "$(find "$root/Library" "$root/Applications" -name '*.app*')" ]; }

everything() {
  start_from "$work/new" && PERL_UNICODE=SD INSTALL_ROOT=$root "$resources/uninstall.sh" && all_gone && [ "$(tail -n 1 "$log")" = finish ] &&
    [ "$(grep -cE '^(kill|remove) |removed$' "$log")" = 9 ] && uninstall && all_gone && install && holds "$work/new"
}

picture() { tar -c -C "$root/Applications" Sondrel.app | cksum; }
# What somebody else has put in Sondrel's place stays; the others go.
somebody_elses() {
  # shellcheck disable=SC2034 # the changes use it
  plist="$sondrel/Contents/Info.plist"
  for change in 'sed -i s/com.tessal.Sondrel/com.tessal.Sondrel2/ "$plist"' 'rm "$plist" && mkfifo "$plist"' \
    'mv "$sondrel" "$work/linked.app" && ln -s "$work/linked.app" "$sondrel"' 'rm "$copy/Sondrel.zip"'; do
    start_from "$work/new" && copy_resources && eval "$change" && before=$(picture) && uninstall "$copy" &&
      [ "$(picture)" = "$before" ] && grep -qx 'keep Sondrel' "$log" &&
      [ "$(find "$root/Library" "$root/Applications" -name '*.app*')" = "$sondrel" ] ||
      { echo "$change" && return 1; }
  done
}

# A run of install.sh that was killed left the old bundle in staging. A folder of that name that somebody else has made
# is no such thing.
killed_installation() {
  start_from "$work/new" && mkdir -p "$staging/old" "${staging%staging}leftover.3" && mv "$sondrel" "$staging/old" &&
    uninstall && all_gone && grep -q 'remove Sondrel' "$log" || return 1
  [ "$(id -u)" -eq 0 ] || return 0
  start_from "$work/new" && mkdir -p "$staging/old" && mv "$sondrel" "$staging/old" && chown -R nobody "$staging" &&
    : >"$log" && uninstall && all_gone && ! grep -q Sondrel "$log"
}

# Stopped at any step: a bundle is there and whole, or gone; the next run does the rest.
whole_or_gone() {
  for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
    [ ! -e "$root/$bundle" ] || same "$root/$bundle" "$work/new/$bundle" || return 1
  done
  if [ "$signal" = TERM ] && [ "$status" -ne 0 ]; then
    interrupted_by TERM && lock_is_free && [ -z "$(find "$root" -name '.*.app.*')" ]
  fi && uninstall && all_gone
}
killed() { at_every_boundary uninstall "$work/new" KILL whole_or_gone; }
terminated() { at_every_boundary uninstall "$work/new" TERM whole_or_gone; }

run_cases everything somebody_elses killed_installation killed terminated
