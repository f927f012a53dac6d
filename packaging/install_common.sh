# What install.sh and uninstall.sh share; sourced by both, which set script, their name, and here, their folder.
# Both run as root, in an environment and next to files that other people may have made.

# shellcheck shell=sh
# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return
# shellcheck disable=SC2016 # perl has dollars too
# shellcheck disable=SC2034,SC2154 # the scripts use what is set here, and set what is used here

umask 022
unset TMPDIR UNZIP UNZIPOPT TAR_READER_OPTIONS COPYFILE_DISABLE PERL5OPT PERL5LIB POSIXLY_CORRECT
# A descriptor that is closed here would be the number of the next file that some tool opens.
exec </dev/null
(: 3>&2) || exec 2>/dev/null
(: 3>&1) 2>/dev/null || exec >/dev/null

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
export LC_ALL # without a UTF-8 locale the unpacking tools change Chinese file names

log_file=$root/tmp/tessal_${script}er.log
lock_file=$root/var/run/tessal_installer.lock
input_methods="$root/Library/Input Methods"
bundles='Orvane.app Sondrel.app Cogwen.app'
signals='HUP INT QUIT PIPE ALRM TERM USR1 USR2'
child=    # the process that was started last, while it runs
starting= # set while a child may be running whose number is not known yet
pending=  # the signal that came meanwhile

exists() { [ -e "$1" ] || [ -L "$1" ]; }

# ---- log, failure and signals

# Anyone can put something in the log's place in /tmp. It is opened without following a link, without waiting for the
# other end of a FIFO, and without O_CREAT if it exists (the kernel may refuse that even to root on another user's file
# in a sticky folder). It is written only if what was opened is a regular file with one name. A log that cannot be
# written stops nothing.
log() {
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

ignore_signals() {
  # shellcheck disable=SC2086
  trap '' $signals
}

fail() {
  ignore_signals
  end_child
  printf '%s.sh: %s\n' "$script" "$1" >&2
  log "error: $1"
  exit 1
}

# Starts a command that may take long. The shell answers a signal at once only while it waits for such a process.
start() {
  starting=yes
  "$@" &
  child=$!
  starting=
  [ -z "$pending" ] || interrupt "$pending"
}

await() {
  wait "$child"
  set -- $?
  child=
  return "$1"
}

interrupt() {
  pending=$1
  [ -n "$starting" ] || fail "interrupted by SIG$1"
}

end_child() {
  [ -n "$child" ] || return 0
  { kill -s KILL "$child" && wait "$child"; } 2>/dev/null
  child=
}

# ---- bundles

# Sets name, zip, and the paths of that bundle.
locate() {
  name=$1
  case $name in
    Orvane.app) folder=$input_methods ;;
    *) folder=$root/Applications ;;
  esac
  zip=${name%.app}.zip
  archive=$here/$zip
  destination=$folder/$name
  backup=$folder/.$name.backup
  staging=$folder/.$name.staging
  leftover=$folder/.$name.leftover
  unpacked=$staging/new
  staged=$unpacked/$name
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

# -m 700, and not -p: nobody else reaches into it, and a link planted in its place is refused.
make_staging() { [ -d "$staging" ] && [ ! -L "$staging" ] || mkdir -m 700 "$staging"; }

# Deletes a folder of ours. Files of an old bundle may be immutable, even for root.
delete() {
  rm -rf "$1" 2>/dev/null && return 0
  if [ "$system" = Darwin ]; then
    chflags -R nouchg,noschg,nouappnd,nosappnd "$1"
  else
    chattr -R -i -a "$1"
  fi >/dev/null 2>&1
  rm -rf "$1" 2>/dev/null
}

# Frees the staging place. What cannot be deleted is put aside, for later runs to try again: it must stop none of them.
remove_staging() {
  ! exists "$staging" || delete "$staging" && return 0
  number=1
  while exists "$leftover.$number"; do
    number=$((number + 1))
  done
  rename "$staging" "$leftover.$number" && log "a part of the old $name could not be deleted"
}

# A half-deleted bundle must not bear the backup's name: the next run could put it back.
drop_backup() { make_staging && rename "$backup" "$staging/old" && remove_staging; }

# One run at a time. The lock goes with the last process that holds it (a killed run's child, say). Only root can open
# the file: an open folder can be locked by anyone who may read it.
lock() {
  command -v perl >/dev/null || fail 'perl is missing'
  mkdir -p "${lock_file%/*}" && (umask 077 && : >>"$lock_file") && command exec 9<>"$lock_file" ||
    fail 'cannot open the lock'
  start perl -e '
    open(my $lock, "<&=", 9) or exit 1;
    for (1 .. 100) { exit 0 if flock($lock, 2 | 4); select(undef, undef, undef, 0.1) }
    exit 1'
  await || fail 'another installation is running'
}

# What killed runs have left.
recover() {
  locate "$1"
  for old in "$leftover".*; do
    ! exists "$old" || delete "$old"
  done
  remove_staging || fail "cannot remove old staging of $name"
  if exists "$backup"; then
    if exists "$destination"; then
      drop_backup || fail "cannot remove the backup of $name"
    else
      rename "$backup" "$destination" || fail "cannot put back $name"
    fi
  fi
}

quit() {
  if [ -n "$root" ]; then
    return 0
  elif [ "$system" != Darwin ] && command -v pkill >/dev/null; then
    pkill -x "$1"
  elif command -v killall >/dev/null; then
    killall "$1"
  fi >/dev/null 2>&1
}

remove_all_staging() {
  for bundle in $bundles; do
    locate "$bundle"
    remove_staging
  done
}

# ---- start

for signal in $signals; do
  # shellcheck disable=SC2064
  trap "interrupt $signal" "$signal"
done

[ -d "$root/tmp" ] || mkdir -p "$root/tmp"
[ -n "$root" ] || [ "$(id -u)" = 0 ] || fail 'must be run as root'
# Empty where only unzip is there, which takes longer.
bsdtar=$(command -v bsdtar)
[ -n "$bsdtar" ] || [ "$system" != Darwin ] || bsdtar=/usr/bin/tar
