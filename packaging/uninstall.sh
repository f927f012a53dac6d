#!/bin/sh
# Removes the bundles that install.sh has put there and what killed runs have left, and notes each step in a log.
#
# A bundle goes to ".NAME.staging" in its folder by one rename and is deleted there: whatever stops the script, its
# place holds the whole bundle or none, and the next run does the rest. A bundle whose identifier is not that of the
# archive beside this script is somebody else's, and stays.

# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return

set -u
PATH=/usr/bin:/bin:/usr/sbin:/sbin
export PATH
unset CDPATH

script=uninstall
here=$(cd -- "$(dirname -- "$0")" && pwd -P) || exit 1
# shellcheck source-path=SCRIPTDIR source=install_common.sh
. "$here/install_common.sh"

# Prints the identifier in an information property list. Without plistutil, Linux reads only the XML form.
identifier() {
  if [ "$system" = Darwin ]; then
    /usr/libexec/PlistBuddy -c 'Print :CFBundleIdentifier' "$1"
  else
    { plistutil -i "$1" -f xml || cat -- "$1"; } | perl -0777 -ne '
      s/<!--.*?-->//gs;
      s/.*?<dict>//s;
      1 while s/<dict>(?:(?!<dict>).)*?<\/dict>//s; # only the keys of the outermost dictionary
      print $1 if m{<key>CFBundleIdentifier</key>\s*<string>([^<]*)</string>}'
  fi 2>/dev/null
}

is_ours() {
  [ ! -L "$destination" ] && [ -f "$destination/Contents/Info.plist" ] && exists "$archive" || return 1
  make_staging || fail "cannot create staging for $name"
  if [ -n "$bsdtar" ]; then
    "$bsdtar" -xOf "$archive" "$name/Contents/Info.plist"
  else
    unzip -p "$archive" "$name/Contents/Info.plist"
  fi >"$staging/Info.plist" && declared=$(identifier "$staging/Info.plist") && [ -n "$declared" ] ||
    fail "cannot read $zip"
  [ "$(identifier "$destination/Contents/Info.plist")" = "$declared" ]
}

exists "$here/Orvane.zip" || fail 'Orvane.zip is missing'
lock
trap remove_all_staging EXIT
for bundle in $bundles; do
  recover "$bundle"
done

for app in Orvane Sondrel Cogwen; do
  locate "$app.app"
  exists "$destination" || continue
  if ! is_ours; then
    log "keep $app"
    continue
  fi
  log "kill $app"
  quit "$app"
  [ "$app" != Orvane ] || quit OrvaneSettings
  log "remove $app"
  make_staging && rename "$destination" "$staging/old" || fail "cannot remove $name"
  remove_staging
  log "$app removed"
done
log 'finish'
