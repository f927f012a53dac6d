#!/bin/sh
# Removes the bundles that install.sh has put there and what killed runs have left, and notes each step in a log.
#
# A bundle goes to staging by one rename. There, where nobody can put another one in its place, it is looked at. One
# with another identifier than that of the archive beside this script is somebody else's, and goes back; one that names
# none is a damaged one of ours. All others are deleted together at the end: whatever stops the script, a place holds
# the whole bundle, or none, and the next run puts that right.

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

# Prints a file that anybody may have made; nothing if it is missing or no regular file. It fails if it cannot be read,
# or has a megabyte.
print_file() {
  # shellcheck disable=SC2016 # perl has dollars too
  perl -e '
    use Fcntl;
    sysopen(my $file, $ARGV[0], O_NONBLOCK) or exit !($!{ENOENT} || $!{ENOTDIR});
    exit unless -f $file;
    my $length = sysread($file, my $text, 1 << 20);
    exit !(defined $length && $length < 1 << 20 && syswrite(STDOUT, $text) == $length);
  ' -- "$1"
}

# Sets identifier to the one in the information property list that the command prints; empty if it names none. It fails
# if that cannot be told.
identify() { # COMMAND...
  "$@" >"$staging/Info.plist" || return
  if [ "$system" = Darwin ]; then
    identifier=$(plutil -extract CFBundleIdentifier xml1 -o - "$staging/Info.plist")
  else
    identifier=$(python3 -Ic 'import plistlib, sys; print(plistlib.load(sys.stdin.buffer)["CFBundleIdentifier"])' \
      <"$staging/Info.plist")
  fi 2>/dev/null
  case $?:$identifier in
    1:* | *'<string></string>'*) identifier= ;;
    0:*) ;;
    *) return 1 ;;
  esac
}

is_ours() {
  [ ! -L "$held" ] && [ -f "$archive" ] || return 1
  identify bsdtar -xOf "$archive" "$name/Contents/Info.plist" && [ -n "$identifier" ] || fail "无法读取 $zip"
  declared=$identifier
  identify print_file "$held/Contents/Info.plist" || fail "无法读取 $name"
  [ -z "$identifier" ] || [ "$identifier" = "$declared" ]
}

[ -f "$here/Orvane.zip" ] || fail '缺少 Orvane.zip'
lock
make_staging
trap 'return_held && remove_staging' EXIT
for app in Orvane Sondrel Cogwen; do
  locate "$app"
  exists "$destination" || continue
  step "移开 $app"
  rename "$destination" "$held" || fail "无法移除 $name"
  if is_ours; then
    quit "$app"
    [ "$app" != Orvane ] || quit OrvaneSettings
  else
    rename "$held" "$destination" || fail "无法还原 $name"
    log "保留 $app"
  fi
done
step '删除移开的程序包'

# From here on nothing goes back.
ignore_signals
trap - EXIT
remove_staging
flush "$lock_file"
log 'finish'
