#!/bin/sh
# Removes the bundles that install.sh has put there and what killed runs have left, and notes each step in a log.
#
# A bundle goes to staging by one rename and is deleted there: whatever stops the script, its place holds the whole
# bundle or none, and the next run does the rest. A bundle whose identifier is not that of the archive beside this
# script is somebody else's, and stays.

# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return

set -u
# As in install.sh.
case ${1:-} in
  clean) ;;
  *) exec /usr/bin/env -i PATH=/usr/bin:/bin:/usr/sbin:/sbin INSTALL_ROOT="${INSTALL_ROOT:-}" /bin/sh "$0" clean ;;
esac

script=uninstall
here=$(cd -- "$(dirname -- "$0")" && pwd -P) || exit 1
# shellcheck source-path=SCRIPTDIR source=install_common.sh
. "$here/install_common.sh"

# Prints the identifier in an information property list.
identifier() {
  if [ "$system" = Darwin ]; then
    plutil -extract CFBundleIdentifier xml1 -o - -
  else
    python3 -Ic 'import plistlib, sys; print(plistlib.loads(sys.stdin.buffer.read())["CFBundleIdentifier"])'
  fi 2>/dev/null
}

# Prints a file that anybody may have put there, if it is a regular file, and no more than a megabyte of it.
print_file() {
  # shellcheck disable=SC2016 # perl has dollars too
  perl -e '
    use Fcntl;
    my ($file, $text);
    sysopen($file, $ARGV[0], O_NOFOLLOW | O_NONBLOCK) or exit;
    print $text if -f $file && sysread($file, $text, 1 << 20);
  ' -- "$1"
}

is_ours() {
  [ ! -L "$destination" ] && [ -f "$archive" ] || return 1
  declared=$(bsdtar -xOf "$archive" "$name/Contents/Info.plist" | identifier)
  [ -n "$declared" ] || fail "无法读取 $zip"
  [ "$(print_file "$destination/Contents/Info.plist" | identifier)" = "$declared" ]
}

[ -f "$here/Orvane.zip" ] || fail '缺少 Orvane.zip'
lock
make_staging
for app in Orvane Sondrel Cogwen; do
  locate "$app"
  exists "$destination" || continue
  if ! is_ours; then
    step "keep $app"
    continue
  fi
  step "kill $app"
  quit "$app"
  [ "$app" != Orvane ] || quit OrvaneSettings
  step "remove $app"
  rename "$destination" "$staging/$name" || fail "无法移除 $name"
  log "$app removed"
done
trap - EXIT
remove_staging
flush "$lock_file"
log 'finish'
