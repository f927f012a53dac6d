# What install.sh and uninstall.sh share; sourced by both, which set script, their name, and here, their folder.
#
# Both run as root, in an environment and next to files that other people may have made. Every administrator's programs
# write in "/Applications", so whole bundles are renamed into it and out of it, and no more. All else happens in a
# staging folder below "/Library/Input Methods", where root alone writes. Both folders are on one volume.

# shellcheck shell=sh
# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return
# shellcheck disable=SC2034,SC2154 # the scripts use what is set here, and set what is used here

umask 022
exec </dev/null

system=$(uname -s)
if [ "$system" = Darwin ]; then
  root=
  LC_ALL=en_US.UTF-8
else
  root=${INSTALL_ROOT%/} # without one these are the real places
  LC_ALL=C.UTF-8
fi
export LC_ALL # without a UTF-8 locale bsdtar changes Chinese file names

log_file=$root/tmp/tessal_${script}er.log
lock_file=$root/var/run/tessal_installer.lock
input_methods="$root/Library/Input Methods"
staging=$input_methods/.Orvane.app.staging
leftover=$input_methods/.Orvane.app.leftover
signals='HUP INT QUIT PIPE TERM'
interrupted= # the signal that has come
child=       # the process that was started last, while it runs

exists() { [ -e "$1" ] || [ -L "$1" ]; }

# ---- log, failure and signals

# Anyone can put something in the log's place in /tmp. It is opened without following a link, without waiting for the
# other end of a FIFO, and without O_CREAT if it exists (the kernel may refuse that even to root on another user's file
# in a sticky folder). It is written only if what was opened is a regular file with one name. A log that cannot be
# written stops nothing.
log() {
  # shellcheck disable=SC2016 # perl has dollars too
  perl -e '
    use Fcntl;
    my ($path, $line) = @ARGV;
    my $flags = O_WRONLY | O_APPEND | O_NOFOLLOW | O_NONBLOCK;
    my $log;
    sysopen($log, $path, $flags) or sysopen($log, $path, $flags | O_CREAT | O_EXCL) or exit;
    syswrite($log, "$line\n") if -f $log && (stat _)[3] == 1;
  ' -- "$log_file" "$1" 2>/dev/null
  return 0
}

# Notes the step that comes next. A signal stops the script between two steps, or while it waits.
step() {
  [ -z "$interrupted" ] || fail
  log "$1"
}

fail() {
  [ -z "$interrupted" ] || set -- "被信号 SIG$interrupted 中断"
  ignore_signals
  [ -z "$child" ] || { kill -s KILL "$child" && wait "$child"; } 2>/dev/null
  printf '%s\n' "$1" >&2
  log "error: $1"
  exit 1
}

# shellcheck disable=SC2086
ignore_signals() { trap '' $signals; }

# Starts a command that may take long, for await to wait for.
start() {
  "$@" &
  child=$!
}

await() {
  [ -n "$interrupted" ] || wait "$child"
  set -- $?
  [ -z "$interrupted" ] || fail
  child=
  return "$1"
}

# Waits until the disk has what was written below there, and what was renamed. On macOS sync may return before that.
# There fsync hands each file to the disk, and F_FULLFSYNC, number 51, waits until the disk has kept all of it.
flush() {
  if [ "$system" = Darwin ]; then
    # shellcheck disable=SC2016
    start find "$1" -type f -exec perl -MIO::Handle -e '
      open($file, "+<", $_) && $file->sync or exit 1 for @ARGV;
      fcntl($file, 51, 0)' -- {} +
  else
    start sync
  fi
  await || fail '无法写入磁盘'
}

# One run at a time. The lock goes with the last process that holds it (a killed run's child, say). Only root can open
# the file: an open folder can be locked by anyone who may read it. To open a FIFO would be to wait.
lock() {
  command -v perl >/dev/null || fail '缺少 perl'
  mkdir -p "${lock_file%/*}" || fail '无法打开锁'
  exists "$lock_file" || (umask 077 && : >"$lock_file")
  [ -f "$lock_file" ] && command exec 9<>"$lock_file" || fail '无法打开锁'
  # shellcheck disable=SC2016
  start perl -e '
    open(my $lock, "<&=", 9) or exit 1;
    for (1 .. 100) { exit 0 if flock($lock, 2 | 4); select(undef, undef, undef, 0.1) }
    exit 1'
  await || fail '另一个安装正在进行'
}

# ---- bundles

# Sets the names and paths of that application.
locate() {
  name=$1.app
  zip=$1.zip
  archive=$here/$zip
  staged=$staging/new/$name
  backup=$staging/old/$name
  held=$staging/old/$1.held
  case $1 in
    Orvane) destination=$input_methods/$name ;;
    *) destination=$root/Applications/$name ;;
  esac
}

# One rename, which lands in no folder of that name, replaces nothing and copies nothing to another volume. The Finder
# locks a bundle by a flag that stops even root.
unlocked=nouchg,noschg,nouappnd,nosappnd
rename() {
  chflags -h "$unlocked" "$1" >/dev/null 2>&1
  # shellcheck disable=SC2016
  ! exists "$2" && perl -e 'rename($ARGV[0], $ARGV[1]) or die "$!\n"' -- "$1" "$2"
}

# What uninstall.sh has taken from its place to look at goes back there. What has come there meanwhile stays as well.
return_held() {
  for app in Orvane Sondrel Cogwen; do
    locate "$app"
    ! exists "$held" || rename "$held" "$destination" || fail "无法还原 $name"
  done
}

# Files of an old bundle may be locked, even for root.
delete() {
  rm -rf "$1" 2>/dev/null && return 0
  chflags -R "$unlocked" "$1" >/dev/null 2>&1 # it leaves links alone
  rm -rf "$1" 2>/dev/null
}

# A half-deleted bundle must not bear the backup's name: the next run could put it back. What cannot be deleted is put
# aside, for later runs to try again: it must stop none of them.
remove_staging() {
  ! exists "$staging/old" || rename "$staging/old" "$staging/trash" || return 1
  delete "$staging" && return 0
  log '旧版本有一部分删不掉'
  rename "$staging" "$leftover.$$"
}

# Makes the staging folder, after what killed runs have left was put right. Only a folder of our own is trusted: the
# folder around it may have been open to others before.
make_staging() {
  mkdir -p "$input_methods" && [ ! -L "$input_methods" ] && { [ -n "$root" ] || chown 0:0 "$input_methods"; } &&
    chmod go-w "$input_methods" || fail '无法保护输入法文件夹'
  for old in "$leftover".*; do
    delete "$old"
  done
  if [ -n "$(find "$staging" -prune -type d -user "$(id -u)" 2>/dev/null)" ]; then
    return_held
    for app in Orvane Sondrel Cogwen; do
      locate "$app"
      exists "$backup" || continue
      # While the new bundle is still in staging the old one counts, whatever others have put in its place.
      if exists "$staged" || exists "$staging/$name"; then
        delete "$staging/$name"
        ! exists "$destination" || rename "$destination" "$staging/$name" || fail "无法还原 $name"
      fi
      exists "$destination" || rename "$backup" "$destination" || fail "无法还原 $name"
    done
    remove_staging
  else
    delete "$staging"
  fi || fail '无法清理旧的临时目录'
  trap remove_staging EXIT
  mkdir -m 700 "$staging" && mkdir "$staging/new" "$staging/old" || fail '无法建立临时目录'
}

quit() { [ -n "$root" ] || killall "$1" >/dev/null 2>&1; }

# ---- start

for signal in $signals; do
  # shellcheck disable=SC2064
  trap "interrupted=$signal" "$signal"
done
[ -d "$root/tmp" ] || mkdir -p "$root/tmp"
[ -n "$root" ] || [ "$(id -u)" = 0 ] || fail '需要管理员权限'
