#!/bin/sh
# install_script_test.sh APP_BUNDLE: runs the install.sh of the bundle.

# shellcheck disable=SC2015,SC2016 # "A && B || return" is meant, and so are dollars in single quotes

# shellcheck source-path=SCRIPTDIR source=script_support.sh
. "$(dirname "$0")/script_support.sh"
log="$root/tmp/tessal_installer.log"

phrases='unzip package,kill Orvane,move app bundle to destination directory,permission change successful'
for companion in Sondrel Cogwen; do
  phrases="$phrases,install $companion,move $companion to Applications,$companion installed successfully"
done

# The steps in the log, after which of them all was written to the disk, and what may be run and written afterwards. The
# environment changes none of that.
fresh() {
  make_copy_with 'sync() { tail -n 1 "$log_file"; }' && (
    cd "$copy" && umask 0 && export IFS=/ CDPATH=/tmp PERL_UNICODE=SD INSTALL_ROOT="$root/" PATH=/nowhere
    exec /usr/bin/env 'BASH_FUNC_perl%%=() { exit 1; }' /bin/bash --posix ./install.sh <&-
  ) >"$work/flushed" && [ "$(paste -s -d , "$log")" = "$phrases,finish" ] &&
    [ "$(paste -s -d , "$work/flushed")" = 'unzip package,Cogwen installed successfully' ] &&
    [ -x "$orvane/Contents/MacOS/OrvaneSettings.app/Contents/MacOS/OrvaneSettings" ] &&
    [ -d "$root/Applications/Cogwen.app" ] && [ -z "$(find "$root" -name '.*.app.*' -o -perm /022)" ]
}

# Everything is new, or all but what this installer does not bring.
overwrite() {
  start_from "$work/old" && install && holds "$work/new" && [ -n "$(find "$orvane" -prune -mmin -1)" ] || return 1
  copy_resources && rm "$copy/Sondrel.zip" && start_from "$work/old" && install "$copy" &&
    same "$root/Applications/Sondrel.app" "$work/old/Applications/Sondrel.app" && ! grep -q Sondrel "$log"
}

# The run of the copy fails before anything of the old bundles is touched, even their processes.
refused() { # WHY
  start_from "$work/old" && ! install "$copy" && failed_because "$1" && holds "$work/old" &&
    ! grep -q 'kill Orvane' "$log" && lock_is_free
}

refusals() {
  copy_resources && echo >>"$copy/Cogwen.zip" && refused Cogwen.zip &&
    copy_resources && sed -i /Sondrel/d "$copy/SHA256SUMS" && refused Sondrel.zip &&
    copy_resources && rm "$copy/Cogwen.zip" && mkfifo "$copy/Cogwen.zip" && refused Cogwen.zip &&
    make_copy_with 'mkdir() { case $* in */old) return 1 ;; esac; command mkdir "$@"; }' && refused 临时目录
}

# A copy with another Cogwen.zip, which is listed.
pack() { # MEMBER,MODE,TEXT...
  copy_resources && python3 - "$copy/Cogwen.zip" "$@" <<'PYTHON'
import sys, zipfile
with zipfile.ZipFile(sys.argv[1], "w") as archive:
    for member in sys.argv[2:]:
        name, mode, text = member.split(",")
        info = zipfile.ZipInfo(name)
        info.external_attr = int(mode, 8) << 16
        archive.writestr(info, text)
PYTHON
  (cd "$copy" && sha256sum -- *.zip >SHA256SUMS)
}

# Members that would land elsewhere, or are no files.
bad_archive() {
  mkdir "$work/elsewhere"
  for members in Others.app/a,100644,a Cogwen.app/../../a,100644,a Cogwen.app/a,020666,- \
    "Cogwen.app,120777,$work/elsewhere" "Cogwen.app/b,120777,$work/elsewhere Cogwen.app/b/a,100644,a"; do
    # shellcheck disable=SC2086
    pack $members && refused Cogwen.zip && [ -z "$(ls "$work/elsewhere")" ] || { echo "$members" && return 1; }
  done
}

# Attribute files of macOS, and private and special modes.
other_archives() {
  pack Cogwen.app/a,100600, Cogwen.app/b,106777, __MACOSX/Cogwen.app/._a,100644, && install "$copy" &&
    [ -z "$(find "$root/Applications" -perm /6022 -o ! -perm -444 -o -name __MACOSX)" ] &&
    [ -x "$root/Applications/Cogwen.app/b" ]
}

# Others' things in the places of bundles, staging and lock. The folder of input methods is root's alone afterwards.
in_the_way() {
  mkdir -p "${orvane%/*}" "$root/Applications" "$work/precious" &&
    touch "$orvane" "$work/precious/kept" && chmod 777 "${orvane%/*}" &&
    ln -s "$work/precious" "$sondrel" && ln -s "$work/precious" "$staging" &&
    install && holds "$work/new" && [ -e "$work/precious/kept" ] && [ -z "$(find "$root/Library" -perm /022)" ] ||
    return 1
  rm "$lock" && mkfifo "$lock" && ! install && failed_because 锁 && holds "$work/new"
}

# Only a plain log file is written, and its lack stops nothing.
log_in_the_way() {
  for put in "ln -s ../../victim" "ln $work/victim" "ln -s $work/missing" mkfifo mkdir; do
    rm -rf "$root" && mkdir -p "$root/tmp" && echo precious >"$work/victim" && $put "$log" || return 1
    install && holds "$work/new" && [ "$(cat "$work/victim")" = precious ] && [ ! -e "$work/missing" ] || return 1
  done
}

# A signal at any step puts everything back. The last boundaries lie after the point of no return.
put_back_or_done() {
  if [ "$status" -eq 0 ]; then
    [ "$n" -gt 20 ] && holds "$work/new"
  else
    holds "$work/old" && interrupted_by "$signal"
  fi && lock_is_free
}
signals() { at_every_boundary install "$work/old" 'TERM HUP INT PIPE' put_back_or_done; }

# Stopped while its child is busy: it answers at once, and takes the child along.
busy_child() {
  make_copy_with 'bsdtar() { kill -s TERM $$; exec sleep 90; }'
  start_from "$work/old" && ! install "$copy" && interrupted_by TERM && holds "$work/old" && lock_is_free
}

# Where others may write, only whole bundles ever lie, and nobody else gets into staging.
whole_or_set_aside() {
  for bundle in "Library/Input Methods/Orvane.app" Applications/Sondrel.app Applications/Cogwen.app; do
    found=$root/$bundle
    [ -e "$found" ] || found=$staging/old/${bundle##*/}
    same "$found" "$work/old/$bundle" || same "$found" "$work/new/$bundle" || return 1
  done
  [ -z "$(find "$root/Applications" -name '.?*' 2>/dev/null && find "$staging" -prune ! -perm 700 2>/dev/null)" ]
}

# Killed, killed again during the repair, then left alone. What somebody has put in a bundle's place meanwhile does not
# cost the old one.
planted() { mkdir "$sondrel" && stop_at install 12 TERM && same "$sondrel" "$work/old/Applications/Sondrel.app"; }
repaired() {
  whole_or_set_aside && { [ -e "$sondrel" ] || planted; } && { ! stop_at install 8 KILL || whole_or_set_aside; } &&
    install && holds "$work/new"
}
killed() { at_every_boundary install "$work/old" KILL repaired; }

# The second one waits, but not for ever.
two_at_once() {
  start_from "$work/old" && { install & } && install && wait $! && holds "$work/new" &&
    [ "$(grep -c finish "$log")" = 2 ] || return 1
  copy_resources && sed -i 's/1 \.\. 100/1 .. 1/' "$copy/install_common.sh" && start_from "$work/old" &&
    ! (flock 8 && install "$copy") 8>"$lock" && failed_because 另一个安装 && holds "$work/old"
}

# A file in the old bundle that not even root can delete at first: it is put aside, and a later run takes it away.
immutable() {
  start_from "$work/old" && { chattr +i "$sondrel/Contents/old" 2>"$work/stderr" || return 0; } &&
    install && ! grep -q error: "$log" &&
    same "$root/Applications" "$work/new/Applications" && ls "${staging%staging}"leftover.* >"$work/stderr" || return 1
  make_copy_with 'chflags() { chattr -R -i "$3"; }' && install "$copy" && holds "$work/new"
}

run_cases fresh overwrite refusals bad_archive other_archives in_the_way log_in_the_way immutable \
  busy_child signals killed two_at_once
