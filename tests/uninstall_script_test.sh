#!/bin/sh
# uninstall_script_test.sh APP_BUNDLE: runs the bundle's uninstall.sh on what its install.sh has left.

# shellcheck disable=SC2015 # "A && B || return" is meant

# shellcheck source-path=SCRIPTDIR source=script_support.sh
. "$(dirname "$0")/script_support.sh"
log="$root/tmp/tessal_uninstaller.log"

uninstall() { run_script uninstall "${1:-$resources}"; } # [RESOURCES]
all_gone() { [ -z "$(find "$root/Library" "$root/Applications" -name '*.app*')" ]; }

everything() {
  start_from "$work/new" && PERL_UNICODE=SD INSTALL_ROOT=$root "$resources/uninstall.sh" && all_gone &&
    [ "$(grep -c 移开 "$log") $(tail -n 1 "$log")" = '4 finish' ] && uninstall && all_gone && install && holds "$work/new"
}

cp -R "$work/new" "$work/theirs"
sed -i s/com.tessal.Sondrel/com.tessal.Sondrel2/ "$work/theirs/Applications/Sondrel.app/Contents/Info.plist"
picture() { tar -c -C "$root/Applications" Sondrel.app | cksum; }
sondrel_alone() { [ "$(find "$root/Library" "$root/Applications" -name '*.app*')" = "$sondrel" ]; }
# What somebody else has put in Sondrel's place stays; the others go.
somebody_elses() {
  for change in : 'rm -r "$sondrel" && ln -s "$work/new/Applications/Sondrel.app" "$sondrel"' 'rm "$copy/Sondrel.zip"'; do
    start_from "$work/theirs" && copy_resources && eval "$change" && before=$(picture) && uninstall "$copy" &&
      [ "$(picture)" = "$before" ] && grep -qx '保留 Sondrel' "$log" && sondrel_alone || { echo "$change" && return 1; }
  done
  # It comes while ours is looked at.
  make_copy_with 'bsdtar() { command rm -rf "$destination"; command mkdir "$destination"; command bsdtar "$@"; }' &&
    start_from "$work/new" && uninstall "$copy" && [ -d "$sondrel" ]
}

# Ours goes, too, if it does not say whose it is. If it cannot be asked, all stay.
damaged() {
  # shellcheck disable=SC2034 # the changes use it
  plist="$sondrel/Contents/Info.plist"
  for change in ': >"$plist"' 'sed -i s/BundleIdentifier// "$plist"' 'rm "$plist"' 'rm "$plist" && mkfifo "$plist"'; do
    start_from "$work/new" && eval "$change" && uninstall && all_gone || { echo "$change" && return 1; }
  done
  for fault in 'python3() { [ "${declared:-}" != com.tessal.Cogwen ] || return 137; command python3 "$@"; }' \
    'perl() { case $2 in *syswrite\(STDOUT*) return 1 ;; esac; command perl "$@"; }'; do
    make_copy_with "$fault" && start_from "$work/new" && ! uninstall "$copy" && failed_because 无法读取 &&
      holds "$work/new" || return 1
  done
}

# A run of install.sh that was killed left the old bundle in staging. A folder of that name that somebody else has made
# is no such thing.
killed_installation() {
  start_from "$work/new" && mkdir -p "$staging/old" "${staging%staging}leftover.3" && mv "$sondrel" "$staging/old" &&
    uninstall && all_gone && grep -q 'Sondrel' "$log" || return 1
  [ "$(id -u)" -eq 0 ] || return 0
  start_from "$work/new" && mkdir -p "$staging/old" && mv "$sondrel" "$staging/old" && chown -R nobody "$staging" &&
    : >"$log" && uninstall && all_gone && ! grep -q Sondrel "$log"
}

# Told to stop at any step, it leaves all or nothing of ours.
all_or_nothing() {
  if [ "$status" -eq 0 ]; then sondrel_alone; else interrupted_by TERM && holds "$work/theirs"; fi && lock_is_free
}
terminated() { at_every_boundary uninstall "$work/theirs" TERM all_or_nothing; }

# Killed at any step: a bundle is there and whole, or set aside; the next run does the rest.
whole_or_gone() {
  for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
    [ ! -e "$root/$bundle" ] || same "$root/$bundle" "$work/theirs/$bundle" || return 1
  done
  uninstall && sondrel_alone && same "$sondrel" "$work/theirs/Applications/Sondrel.app"
}
killed() { at_every_boundary uninstall "$work/theirs" KILL whole_or_gone; }

run_cases everything somebody_elses damaged killed_installation terminated killed
