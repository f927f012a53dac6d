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
umask 022
PATH=/usr/bin:/bin:/usr/sbin:/sbin
export PATH
unset UNZIP UNZIPOPT CDPATH
exec </dev/null

system=$(uname -s)
if [ "$system" = Darwin ]; then
  root=
  group=wheel
  LC_ALL=en_US.UTF-8
else
  root=${INSTALL_ROOT:-}
  root=${root%/}
  case $root in
    '' | /*) ;;
    *) root=$(pwd)/$root ;;
  esac
  group=root
  LC_ALL=C.UTF-8
fi
export LC_ALL # without a UTF-8 locale unzip rewrites Chinese file names

here=$(cd -- "$(dirname -- "$0")" && pwd -P)
log_file=$root/tmp/tessal_installer.log
input_methods="$root/Library/Input Methods"
bundles='Orvane.app Sondrel.app Cogwen.app'
signals='HUP INT QUIT PIPE ALRM TERM USR1 USR2'
begun= # bundles whose renames have begun, the latest first

exists() { [ -e "$1" ] || [ -L "$1" ]; }

# ---- log and failure

# Anyone can put something in the log's place in /tmp. It is written only if it is a regular file with this one name,
# and a log that cannot be written stops nothing.
log() {
  exists "$log_file" || (set -C && : >"$log_file") 2>/dev/null
  if [ ! -f "$log_file" ] || [ -L "$log_file" ]; then
    return 0
  elif [ "$system" = Darwin ]; then
    append_checking_descriptor "$1" 2>/dev/null
  elif [ "$(stat -c %h -- "$log_file" 2>/dev/null)" = 1 ]; then
    # Not ">>": it opens with O_CREAT, which the kernel may refuse even to root on another user's file in a sticky
    # folder (fs.protected_regular).
    printf '%s\n' "$1" |
      dd of="$log_file" oflag=append,nofollow,nonblock conv=notrunc,nocreat status=none 2>/dev/null
  fi
  return 0
}

# The shell cannot open without following a link, so what was opened must be what the path itself names.
# shellcheck disable=SC2094
append_checking_descriptor() {
  {
    opened=$(stat -f '%d:%i:%l:%HT' <&8)
    case $opened in
      *:1:'Regular File')
        [ "$opened" = "$(stat -f '%d:%i:%l:%HT' "$log_file")" ] && printf '%s\n' "$1" >&8
        ;;
    esac
  } 8>>"$log_file"
}

fail() {
  # shellcheck disable=SC2086
  trap '' $signals
  printf 'install.sh: %s\n' "$1" >&2
  log "error: $1"
  exit 1
}

# ---- archives

sha256() {
  if command -v sha256sum >/dev/null; then
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

# Sets the paths of a bundle for the functions below.
locate() {
  case $1 in
    Orvane.app) folder=$input_methods ;;
    *) folder=$root/Applications ;;
  esac
  destination=$folder/$1
  backup=$folder/.$1.backup
  staging=$folder/.$1.staging
  staged=$staging/new/$1
}

# One rename that neither lands inside a directory of that name nor replaces anything.
rename() {
  ! exists "$2" || return 1
  if [ "$system" = Darwin ]; then
    mv -f "$1" "$2"
  else
    mv -fT "$1" "$2"
  fi
}

# Holds the folder itself: no lock file to leave behind, and the kernel lets go when the last process of a killed run
# (an unzip, say) is gone.
lock() {
  mkdir -p "$input_methods" || fail 'cannot create the Input Methods folder'
  command exec 9<"$input_methods" || fail 'cannot open the Input Methods folder'
  if command -v flock >/dev/null; then
    flock -w 10 9
  elif command -v perl >/dev/null; then
    perl -e 'open(my $folder, "<&=", 9) or exit 1;
      for (1 .. 100) { exit 0 if flock($folder, 2 | 4); select(undef, undef, undef, 0.1) }
      exit 1'
  fi || fail 'another installation is running'
}

# What a killed run has left.
recover() {
  locate "$1"
  rm -rf "$staging" || fail "cannot remove old staging of $1"
  if exists "$backup"; then
    if exists "$destination"; then
      drop_backup || fail "cannot remove the backup of $1"
    else
      rename "$backup" "$destination" || fail "cannot put back $1"
    fi
  fi
}

# A half-deleted bundle must not bear the backup's name: the next run could put it back.
drop_backup() {
  { [ -d "$staging" ] || mkdir -m 700 "$staging"; } && rename "$backup" "$staging/old" && rm -rf "$staging"
}

unpack() {
  locate "$1"
  # -m 700, and not -p: nobody else reaches into it, and a link planted in its place is refused.
  mkdir -p "$folder" && mkdir -m 700 "$staging" || fail "cannot create staging for $1"
  archive=$here/${1%.app}.zip
  unzip -Z1 "$archive" | while read -r member; do
    case $member/ in
      */../*) exit 1 ;;
      "$1"/*) ;;
      *) exit 1 ;;
    esac
  done || fail "${1%.app}.zip holds more than $1"
  unzip -qo "$archive" -d "$staging/new" >&2 || fail "cannot unpack ${1%.app}.zip"
  [ -d "$staged" ] && [ ! -L "$staged" ] || fail "${1%.app}.zip does not hold $1"
}

# Still in staging, so that the destination never shows a bundle with the wrong owner.
set_permissions() {
  locate "$1"
  if [ -z "$root" ]; then
    chown -Rh "root:$group" "$staged" || fail "cannot change the owner of $1"
  fi
  chmod -R u+rwX,go+rX,go-w "$staged" || fail "cannot change the permissions of $1"
  if [ "$system" = Darwin ]; then
    xattr -dr com.apple.quarantine "$staged" 2>/dev/null
  fi
  # Launch Services looks again at a bundle whose time is new.
  touch "$staged" || fail "cannot touch $1"
}

swap_in() {
  locate "$1"
  begun="$1 $begun"
  if exists "$destination"; then
    rename "$destination" "$backup" || fail "cannot set aside the old $1"
  fi
  rename "$staged" "$destination" || fail "cannot move $1 into place"
}

kill_orvane() {
  if [ -n "$root" ]; then
    return 0
  elif [ "$system" != Darwin ] && command -v pkill >/dev/null; then
    pkill -x Orvane
  elif command -v killall >/dev/null; then
    killall Orvane
  fi >/dev/null 2>&1
}

# Goes by what lies on disk: a signal may have come between a rename and whatever would note it.
roll_back() {
  # shellcheck disable=SC2086
  trap '' $signals
  for bundle in $begun; do
    locate "$bundle"
    if ! exists "$staged" && exists "$destination"; then
      rename "$destination" "$staging/failed"
    fi
    if exists "$backup" && ! rename "$backup" "$destination"; then
      printf 'install.sh: the old %s is still at %s\n' "$bundle" "$backup" >&2
      log "error: the old $bundle could not be put back"
    fi
  done
  remove_staging
}

remove_staging() {
  for bundle in $bundles; do
    locate "$bundle"
    rm -rf "$staging"
  done
}

# From here on the new bundles stay, whatever happens.
commit() {
  # shellcheck disable=SC2086
  trap '' $signals
  trap - EXIT
  for bundle in $begun; do
    locate "$bundle"
    ! exists "$backup" || drop_backup
  done
  remove_staging
}

# ---- the installation

for signal in $signals; do
  # shellcheck disable=SC2064
  trap "fail 'interrupted by SIG$signal'" "$signal"
done

[ -d "$root/tmp" ] || mkdir -p "$root/tmp"
[ -n "$root" ] || [ "$(id -u)" = 0 ] || fail 'must be run as root'
check_archives
lock
trap roll_back EXIT
for bundle in $bundles; do
  recover "$bundle"
done

log 'unzip package'
unpack Orvane.app
log 'kill Orvane'
kill_orvane
log 'move app bundle to destination directory'
set_permissions Orvane.app
swap_in Orvane.app
log 'permission change successful'

for name in Sondrel Cogwen; do
  exists "$here/$name.zip" || continue
  log "install $name"
  unpack "$name.app"
  set_permissions "$name.app"
  log "move $name to Applications"
  swap_in "$name.app"
  log "$name installed successfully"
done

commit
log 'finish'
