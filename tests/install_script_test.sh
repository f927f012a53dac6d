#!/bin/sh
# install_script_test.sh RESOURCES: runs the install.sh that lies in RESOURCES beside its archives.

# shellcheck disable=SC2015,SC2016 # "A && B || return" is meant, and so are dollars in single quotes

# shellcheck source-path=SCRIPTDIR source=script_support.sh
. "$(dirname "$0")/script_support.sh"
log="$root/tmp/tessal_installer.log"

phrases='unzip package
kill Orvane
move app bundle to destination directory
permission change successful
install Sondrel
move Sondrel to Applications
Sondrel installed successfully
install Cogwen
move Cogwen to Applications
Cogwen installed successfully
finish'

fresh() {
  install && [ "$(cat "$log")" = "$phrases" ] &&
    [ -x "$orvane/Contents/MacOS/OrvaneSettings.app/Contents/MacOS/OrvaneSettings" ] &&
    [ -d "$root/Applications/Cogwen.app" ] && [ -z "$(find "$root" -name '.*.app.*' -o -perm /022)" ]
}

overwrite() {
  start_from "$work/old" && install && holds "$work/new" && [ -n "$(find "$orvane" -prune -mmin -1)" ] || return 1
  copy_resources && rm "$copy/Sondrel.zip" && start_from "$work/old" && install "$copy" &&
    same "$root/Applications/Sondrel.app" "$work/old/Applications/Sondrel.app" && ! grep -q Sondrel "$log"
}

bad_checksum() {
  copy_resources && echo >>"$copy/Cogwen.zip" && ! install "$copy" && failed_because Cogwen.zip &&
    [ "$(ls "$root")" = tmp ] || return 1
  copy_resources && sed -i /Sondrel/d "$copy/SHA256SUMS" && ! install "$copy" && failed_because Sondrel.zip &&
    [ "$(ls "$root")" = tmp ]
}

use_unzip() { sed -i 's/^bsdtar=.*/bsdtar=/; s/^\[ -n "$bsdtar" \].*//' "$copy/install_common.sh"; }
list_sums() { (cd "$copy" && sha256sum Orvane.zip Sondrel.zip Cogwen.zip >SHA256SUMS); }

# Puts another Cogwen.zip in place. No checksum of the archive covers the names: sed makes them what zip would not pack.
pack_cogwen() { # SED-COMMAND MEMBER...
  copy_resources && rm "$copy/Cogwen.zip" && sed_command=$1 && shift &&
    (cd "$work/members" && zip -qry "$copy/Cogwen.zip" "$@") && sed -i "$sed_command" "$copy/Cogwen.zip"
}

pack_refused() {
  case $1 in
    'no bundle') pack_cogwen '' __MACOSX ;;
    'another top folder') pack_cogwen '' Cogwen.app/Contents Others.app ;;
    'parent folder') pack_cogwen s,/aa/aa,/../..,g Cogwen.app/Contents Cogwen.app/aa ;;
    'absolute name') pack_cogwen s,Xtmp/,/tmp/,g Cogwen.app/Contents Xtmp ;;
    'through a link') pack_cogwen s,/lynk/,/link/,g Cogwen.app/link Cogwen.app/lynk/evil ;;
    'a link as bundle') pack_cogwen s,cogweN,Cogwen,g cogweN.app ;;
    damaged) pack_cogwen s,stored,spoilt, Cogwen.app/Contents ;;
    truncated) pack_cogwen '' Cogwen.app/Contents && truncate -s -40 "$copy/Cogwen.zip" ;;
    'no archive') copy_resources && echo text >"$copy/Cogwen.zip" ;;
  esac
}

# Listed rightly, but damaged, without its bundle, or with a member that would land elsewhere.
bad_last_archive() {
  for what in 'no bundle' 'another top folder' 'parent folder' 'absolute name' 'through a link' 'a link as bundle' \
    damaged truncated 'no archive'; do
    for tool in bsdtar unzip; do
      pack_refused "$what" && list_sums && { [ $tool = bsdtar ] || use_unzip; } && start_from "$work/old" &&
        ! install "$copy" && failed_because Cogwen.zip && holds "$work/old" && [ -z "$(ls "$work/elsewhere")" ] &&
        [ ! -e /tmp/orvane-evil ] || { echo "$what, $tool" && return 1; }
    done
  done
  rm -rf "$root" && ! install "$copy" && [ -z "$(find "$root" -name '*.app*')" ]
}

# Attribute files of macOS, and private and special modes.
other_archives() {
  for tool in bsdtar unzip; do
    pack_cogwen '' Cogwen.app/Contents Cogwen.app/modes __MACOSX && list_sums && { [ $tool = bsdtar ] || use_unzip; } &&
      install "$copy" && [ "$(ls "$root/Applications")" = "$(printf 'Cogwen.app\nSondrel.app')" ] &&
      [ "$(cd "$root/Applications" && find Cogwen.app -type f -printf '%m %p\n' | sort)" = \
        '644 Cogwen.app/Contents/kept
644 Cogwen.app/modes/private
755 Cogwen.app/modes/special' ] || { echo "$tool" && return 1; }
  done
}

prepare_members() {
  mkdir -p "$work/elsewhere" "$work/members" && (
    cd "$work/members" &&
      mkdir -p Cogwen.app/Contents Cogwen.app/aa/aa Cogwen.app/lynk Cogwen.app/modes Others.app Xtmp \
        __MACOSX/Cogwen.app/Contents &&
      echo stored | tee Cogwen.app/Contents/kept Cogwen.app/aa/aa/evil Cogwen.app/lynk/evil Cogwen.app/modes/private \
        Cogwen.app/modes/special Others.app/evil Xtmp/orvane-evil __MACOSX/._Cogwen.app \
        __MACOSX/Cogwen.app/Contents/._kept >/dev/null &&
      ln -s "$work/elsewhere" Cogwen.app/link && ln -s "$work/elsewhere" cogweN.app &&
      chmod 600 Cogwen.app/modes/private && chmod 6777 Cogwen.app/modes/special
  )
}

in_the_way() {
  mkdir -p "${orvane%/*}" "$root/Applications" "$work/elsewhere" && touch "$orvane" &&
    ln -s "$work/elsewhere" "$root/Applications/Sondrel.app" &&
    ln -s "$work/elsewhere" "$root/Applications/.Cogwen.app.staging" &&
    install && holds "$work/new" && [ -z "$(ls "$work/elsewhere")" ]
}

log_in_the_way() {
  for put in "ln -s ../../victim" "ln $work/victim" "ln -s $work/missing" mkfifo mkdir; do
    rm -rf "$root" && mkdir -p "$root/tmp" && echo precious >"$work/victim" && $put "$log" || return 1
    install && holds "$work/new" && [ "$(cat "$work/victim")" = precious ] && [ ! -e "$work/missing" ] || return 1
  done
}

log_of_another_user() {
  mkdir -p "$root/tmp" && chmod 1777 "$root/tmp" && : >"$log" && chown nobody "$log" &&
    install && grep -q finish "$log"
}

signals() {
  make_stopping_copy
  for signal in TERM HUP INT PIPE; do
    n=1
    while start_from "$work/old" && stop_at install "$n" "$signal"; do
      # The last boundaries lie after the point of no return.
      if [ "$status" -eq 0 ]; then holds "$work/new"; else holds "$work/old" && interrupted_by "$signal"; fi &&
        lock_is_free || { echo "SIG$signal at boundary $n" && return 1; }
      [ "$signal" = TERM ] && n=$((n + 1)) || n=$((n + 7))
    done
    [ "$n" -gt 31 ] || return 1
  done
}

# Stopped while its child is busy: it answers at once, and takes the child along.
busy_child() {
  make_copy_with 'bsdtar() { [ "$1" != -x ] || { kill -s TERM $$; exec sleep 600; }; }'
  start_from "$work/old" && ! shell="timeout -s KILL 60 $shell" install "$copy" && interrupted_by TERM &&
    holds "$work/old" && lock_is_free
}

whole_or_set_aside() { # TREE that the killed run found
  for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
    if [ -e "$root/$bundle" ]; then
      same "$root/$bundle" "$work/new/$bundle" || same "$root/$bundle" "$1/$bundle"
    elif [ -e "$1/$bundle" ]; then
      same "$root/${bundle%/*}/.${bundle##*/}.backup" "$1/$bundle"
    fi || return 1
  done
}

# Killed, killed again during the repair, then left alone.
killed() {
  make_stopping_copy
  step=1
  for before in "$work/old" "$work/nothing"; do
    n=1
    while start_from "$before" && stop_at install "$n" KILL; do
      whole_or_set_aside "$before" && { ! stop_at install 6 KILL || whole_or_set_aside "$before"; } &&
        install && holds "$work/new" || { echo "killed at boundary $n" && return 1; }
      n=$((n + step))
    done
    [ "$n" -gt 27 ] || return 1
    step=3
  done
}

two_at_once() {
  start_from "$work/old" && { install & } && install && wait $! && holds "$work/new" &&
    [ "$(grep -c finish "$log")" = 2 ] || return 1
  copy_resources && sed -i 's/1 \.\. 100/1 .. 1/' "$copy/install_common.sh" && start_from "$work/old" &&
    mkdir -p "$root/var/run" && ! (
    flock 8 && install "$copy"
  ) 8>"$root/var/run/tessal_installer.lock" && failed_because 'another installation' && holds "$work/old"
}

no_room() {
  mkdir -p "$work/members/Cogwen.app/large" && head -c 3000000 /dev/urandom >"$work/members/Cogwen.app/large/file" &&
    pack_cogwen '' Cogwen.app/large && list_sums || return 1
  for tool in bsdtar unzip; do
    [ $tool = bsdtar ] || use_unzip
    start_from "$work/old" && ! (ulimit -f 1000 && install "$copy") && failed_because Cogwen.zip && holds "$work/old" &&
      start_from "$work/nothing" || return 1
    ! unshare --mount true 2>/dev/null || unshare --mount sh -c '
      mount -t tmpfs -o size=1m tmpfs "$1" && cp -R "$2/old/." "$1" || exit
      INSTALL_ROOT=$1 sh "$3/install.sh" 2>"$2/stderr"
      [ $? = 1 ] && diff -r "$2/old/Applications" "$1/Applications" && diff -r "$2/old/Library" "$1/Library"
    ' sh "$root" "$work" "$copy" || { echo "$tool, full" && return 1; }
  done
}

# A file in the old bundle that not even root can delete.
immutable() {
  for unlocked in no yes; do
    make_copy_with "[ $unlocked = yes ] || chattr() { return 1; }"
    start_from "$work/old" && chattr +i "$sondrel/Contents/old" && install "$copy" &&
      same "$sondrel" "$work/new/Applications/Sondrel.app" && ! grep -q error "$log" || return 1
    if [ $unlocked = no ]; then
      install "$copy" && [ -d "$root/Applications/.Sondrel.app.leftover.1" ] && install
    fi && holds "$work/new" || return 1
  done
}

# Nothing can be written in the folder of the last bundles.
closed_destination() {
  start_from "$work/old" && rm -r "$root/Applications" && echo kept >"$root/Applications" && ! install &&
    failed_because Sondrel.app && same "$root/Library" "$work/old/Library" && [ "$(cat "$root/Applications")" = kept ]
}

odd_environment() {
  mkdir -p "$root/tmp" && : >"$log" && (
    cd "$resources" && umask 0 && export IFS=/ CDPATH=/tmp TMPDIR=/nowhere UNZIP=-l \
      POSIXLY_CORRECT=1 PERL5OPT=-Mnothing INSTALL_ROOT="$root/" PATH=/nowhere
    exec "$shell" ./install.sh <&- >&- 2>&-
  ) && holds "$work/new" && [ "$(cat "$log")" = "$phrases" ] && [ -z "$(find "$root/Library" -perm /022)" ]
}

prepare_members || exit 1
run_case 'fresh installation' fresh
run_case 'overwrite, and one without Sondrel' overwrite
run_case 'checksums are checked before anything is touched' bad_checksum
run_case 'a failure in the last bundle puts all of them back' bad_last_archive
run_case 'archives of other makers' other_archives
run_case 'files and links in the way are replaced, not followed' in_the_way
run_case 'only a plain log file is written, and its lack stops nothing' log_in_the_way
run_case 'a full disk' no_room
run_case 'a destination that cannot be written' closed_destination
run_case 'odd environment' odd_environment
if [ "$(id -u)" -eq 0 ]; then
  run_case "another user's log in a sticky folder" log_of_another_user
  : >"$work/file" && chattr +i "$work/file" 2>/dev/null && run_case 'an immutable file in the old bundle' immutable
fi
run_case 'a signal while a child is busy' busy_child
run_case 'a signal at any step puts everything back' signals
run_case 'SIGKILL at any step leaves what the next run repairs' killed
run_case 'two at once' two_at_once
[ "$failures" -eq 0 ]
