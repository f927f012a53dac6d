#!/bin/sh
# Installs the bundles whose archives lie beside this script and notes each step in the log that the installer follows.
#
# A bundle is unpacked into ".NAME.staging" in its destination folder and swapped in by two renames; the old one stays
# there as ".NAME.backup" until every bundle of the run stands. So whatever stops the script, a destination holds a
# whole bundle, or nothing with the old one beside it. The next run puts that right.
#
# The log's fixed phrases move the progress bar and "finish" starts the activation: an error line holds none of them,
# and no path, since a path could.

# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return

set -u
PATH=/usr/bin:/bin:/usr/sbin:/sbin
export PATH
unset CDPATH

script=install
here=$(cd -- "$(dirname -- "$0")" && pwd -P) || exit 1
# shellcheck source-path=SCRIPTDIR source=install_common.sh
. "$here/install_common.sh"

begun= # bundles whose renames have begun, the latest first

# ---- archives

# openssl uses what the processor has for it: several times as fast as the other two.
sha256() {
  if command -v openssl >/dev/null; then
    openssl dgst -sha256 -r <"$1"
  elif command -v sha256sum >/dev/null; then
    sha256sum <"$1"
  else
    shasum -a 256 <"$1"
  fi | cut -d ' ' -f 1
}

check_archive() {
  expected=
  while read -r sum file || [ -n "$sum" ]; do
    [ "${file#\*}" != "$1" ] || expected=$sum
  done <"$here/SHA256SUMS"
  [ -n "$expected" ] || fail "SHA256SUMS has no entry for $1"
  [ "$(sha256 "$here/$1")" = "$expected" ] || fail "$1 does not match its checksum"
}

check_archives() {
  exists "$here/Orvane.zip" || fail 'Orvane.zip is missing'
  [ -f "$here/SHA256SUMS" ] && [ -r "$here/SHA256SUMS" ] || fail 'SHA256SUMS is missing'
  for bundle in $bundles; do
    ! exists "$here/${bundle%.app}.zip" || check_archive "${bundle%.app}.zip"
  done
}

# ---- bundles

# Special modes and the owner stay behind. bsdtar itself refuses "..", makes an absolute name relative and goes through
# no link, so the members can be listed while it unpacks.
#
# macOS archives keep extended attributes, which carry the signatures of scripts, as files "._X" in a folder "__MACOSX".
# bsdtar puts them back (elsewhere it drops them); unzip leaves that folder in the staging place.
unpack() {
  locate "$1"
  mkdir -p "$folder" && mkdir -m 700 "$staging" "$unpacked" || fail "cannot create staging for $name"
  # bsdtar reads a ZIP file without its end as a stream, without the modes.
  [ "$(tail -c 22 "$archive" | head -c 4)" = "$(printf 'PK\005\006')" ] || fail "$zip is not a whole archive"
  if [ -n "$bsdtar" ]; then
    start "$bsdtar" -x -o --no-same-permissions --mac-metadata --options zip:mac-ext -f "$archive" -C "$unpacked" >&2
    "$bsdtar" -t --options zip:mac-ext -f "$archive" 2>/dev/null | check_members || fail "$zip holds more than $name"
  else
    unzip -Z1 "$archive" | check_members || fail "$zip holds more than $name"
    start unzip -qo "$archive" -d "$unpacked" >&2
  fi
  await || fail "cannot unpack $zip"
  [ -d "$staged" ] && [ ! -L "$staged" ] || fail "$zip does not hold $name"
}

check_members() {
  LC_ALL=C awk -v app="${name%.app}" '
    $0 !~ "^(__MACOSX/([.]_)?)?" app "[.]app(/|$)" && $0 != "__MACOSX/" || /(^|\/)[.][.](\/|$)/ { bad = 1; exit }
    END { exit bad }'
}

# Still in staging, so that the destination never shows a bundle with the wrong owner.
set_permissions() {
  locate "$1"
  if [ -z "$root" ]; then
    chown -Rh "root:$group" "$staged" || fail "cannot change the owner of $name"
  fi
  chmod -R u+rwX,go+rX,go-w "$staged" || fail "cannot change the permissions of $name"
  if [ "$system" = Darwin ]; then
    xattr -dr com.apple.quarantine "$staged" 2>/dev/null
  fi
  # Launch Services looks again at a bundle whose time is new.
  touch "$staged" || fail "cannot touch $name"
}

swap_in() {
  locate "$1"
  begun="$name $begun"
  if exists "$destination"; then
    rename "$destination" "$backup" || fail "cannot set aside the old $name"
  fi
  rename "$staged" "$destination" || fail "cannot move $name into place"
}

# Goes by what lies on disk: a signal may have come between a rename and whatever would note it.
roll_back() {
  ignore_signals
  for bundle in $begun; do
    locate "$bundle"
    if ! exists "$staged" && exists "$destination"; then
      rename "$destination" "$staging/failed"
    fi
    if exists "$backup" && ! rename "$backup" "$destination"; then
      printf 'install.sh: the old %s is still at %s\n' "$name" "$backup" >&2
      log "error: the old $name could not be put back"
    fi
  done
  remove_all_staging
}

# From here on the new bundles stay, whatever happens.
commit() {
  ignore_signals
  trap - EXIT
  for bundle in $begun; do
    locate "$bundle"
    ! exists "$backup" || drop_backup
  done
  remove_all_staging
}

# ---- the installation

check_archives
lock
trap roll_back EXIT
for bundle in $bundles; do
  recover "$bundle"
done

log 'unzip package'
unpack Orvane.app
log 'kill Orvane'
quit Orvane
log 'move app bundle to destination directory'
set_permissions Orvane.app
swap_in Orvane.app
log 'permission change successful'

for app in Sondrel Cogwen; do
  exists "$here/$app.zip" || continue
  log "install $app"
  unpack "$app.app"
  set_permissions "$app.app"
  log "move $app to Applications"
  swap_in "$app.app"
  log "$app installed successfully"
done

commit
log 'finish'
