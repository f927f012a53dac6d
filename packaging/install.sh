#!/bin/sh
# Installs the bundles whose archives lie beside this script and notes each step in the log that the installer follows.
#
# All bundles are unpacked and checked in staging before the first one is swapped in, by two renames. The old ones stay
# in staging until every bundle of the run stands. What is new is on the disk before the first swap. So whatever stops
# the script, a power cut too, a destination holds a whole bundle, or nothing with the old one in staging. The next run
# puts that right.
#
# The log's fixed phrases move the progress bar and "finish" starts the activation: an error line holds none of them,
# and no path, since a path could.

# shellcheck disable=SC2015 # "A && B || fail" is meant: fail does not return

set -u
# Begins anew without the caller's environment: a variable or a function in it may change what a command does. No
# function overrides the words that stand before the end of this.
case ${1:-} in
  clean) ;;
  *) exec /usr/bin/env -i PATH=/usr/bin:/bin:/usr/sbin:/sbin INSTALL_ROOT="${INSTALL_ROOT:-}" /bin/sh "$0" clean ;;
esac

script=install
here=$(cd -- "$(dirname -- "$0")" && pwd -P) || exit 1
# shellcheck source-path=SCRIPTDIR source=install_common.sh
. "$here/install_common.sh"

# Owner and special modes stay behind, and so does what lies beside the bundle. bsdtar itself refuses ".." and goes
# through no link. The attributes of macOS, which carry the signatures of scripts, lie in the archive as files "._X" in
# a folder "__MACOSX": bsdtar puts them back (elsewhere it drops them).
unpack() {
  locate "$1"
  start bsdtar -x -o --no-same-permissions --mac-metadata --options zip:mac-ext -f "$archive" -C "$staging/new" "$name"
  # Meanwhile. openssl uses what the processor has for it.
  sum=$(openssl dgst -sha256 -r <"$archive" | cut -d ' ' -f 1)
  grep -qx "$sum [ *]$zip" "$here/SHA256SUMS" || fail "$zip 与校验和不符：安装包损坏，请重新下载"
  await || fail "无法解开 ${zip}，磁盘可能已满"
  [ -d "$staged" ] && [ ! -L "$staged" ] && [ -z "$(find "$staged" ! -type d ! -type f ! -type l)" ] ||
    fail "$zip 里有不该有的内容"
  [ -n "$root" ] || chown -Rh 0:0 "$staged" || fail "无法更改 $name 的所有者"
  chmod -R a-s,u+rwX,go+rX,go-w "$staged" || fail "无法更改 $name 的权限"
  if [ "$system" = Darwin ]; then
    xattr -dr com.apple.quarantine "$staged" 2>/dev/null
  fi
  # Launch Services looks again at a bundle whose time is new.
  touch "$staged" || fail "无法更改 $name 的时间"
}

swap_in() {
  locate "$1"
  mkdir -p "${destination%/*}" || fail "无法建立 $name 所在的文件夹"
  ! exists "$destination" || rename "$destination" "$backup" || fail "无法移开旧的 $name"
  rename "$staged" "$destination" || fail "无法放好 $name"
}

# Goes by what lies on disk: a signal may have come between a rename and whatever would note it. What others have put in
# an old bundle's place meanwhile makes room, too.
roll_back() {
  for app in $apps; do
    locate "$app"
    if exists "$staged" && ! exists "$backup"; then continue; fi # untouched so far
    ! exists "$destination" || rename "$destination" "$staging/$name"
    if exists "$backup" && ! rename "$backup" "$destination"; then
      printf '旧的 %s 还在 %s\n' "$name" "$backup" >&2
      log "error: 无法还原旧的 $name"
      stays=yes
    fi
  done
  [ -n "${stays:-}" ] || remove_staging
}

apps=
for app in Orvane Sondrel Cogwen; do
  [ "$app" = Orvane ] || exists "$here/$app.zip" || continue
  [ -f "$here/$app.zip" ] || fail "缺少 $app.zip"
  apps="$apps $app"
done
[ -f "$here/SHA256SUMS" ] && [ -r "$here/SHA256SUMS" ] || fail '缺少 SHA256SUMS'
lock
make_staging

step 'unzip package'
for app in $apps; do
  unpack "$app"
done
flush "$staging/new"
trap roll_back EXIT
step 'kill Orvane'
quit Orvane
step 'move app bundle to destination directory'
swap_in Orvane
step 'permission change successful'
for app in ${apps#* Orvane}; do
  step "install $app"
  step "move $app to Applications"
  swap_in "$app"
  step "$app installed successfully"
done

flush "$lock_file"
# From here on the new bundles stay, whatever happens.
ignore_signals
trap - EXIT
remove_staging
log 'finish'
