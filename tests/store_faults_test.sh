#!/bin/sh
# Faults of files, disks and stores around the real programs, a row each: what is
# broken, how the run must end, and what must be on the disk afterwards.
# usage: store_faults_test.sh APP_BUNDLE [NAME...]
# No row may take longer than 30 seconds.
# shellcheck disable=SC2016,SC2034,SC2154,SC2317 # the set-ups are evaluated

set -u
. "$(dirname "$0")/support.sh"
. "$(dirname "$0")/fault_rows.sh"

# Mounts of its own, where it may have them: for full and read-only disks.
if [ -z "${STORE_FAULTS_MOUNTS:-}" ]; then
  if [ -n "$namespace" ]; then
    export STORE_FAULTS_MOUNTS=yes
    # shellcheck disable=SC2086
    exec $namespace sh "$0" "$@"
  fi
  STORE_FAULTS_MOUNTS=no
fi

use_bundle "$1"
shift
holder=
unset DISPLAY WAYLAND_DISPLAY
clean_up() {
  [ -z "$holder" ] || kill -9 "$holder" 2>/dev/null
  grep -o "${work}/[^ ]*" /proc/mounts | while read -r folder; do umount -l "$folder"; done
}

# ---- set-ups

# logs COMMAND: makes what lies at each log's place, $log; $own is the user's file.
logs() {
  mkdir -p "$root/tmp"
  own=$root/own
  for log in "$root/tmp/tessal_installer.log" "$root/tmp/tessal_installer_ui.log"; do
    echo mine >"$own"
    eval "$1"
  done
}
disk() { # disk SIZE FOLDER
  [ "$STORE_FAULTS_MOUNTS" = yes ] || skipped='no mounts here'
  mkdir -p "$2"
  [ -n "$skipped" ] || mount -t tmpfs -o "size=$1" tmpfs "$2" || skipped='no tmpfs here'
}
fill() { cat /dev/zero >"$1/filler" 2>/dev/null; }
read_only() { mount -o remount,ro "$1"; }
hold() { # a process that is stopped while it holds the lock
  mkdir -p "$(dirname "$1")"
  flock --no-fork "$1" sleep 60 & holder=$!
  await "the lock" sh -c '! flock -n "$1" true' - "$1"
  kill -STOP $holder
}
damage_archive() {
  copy_bundle
  printf XX | dd of="$resources/Orvane.zip" bs=1 seek=100 conv=notrunc 2>/dev/null
}
# The information dictionary of the input method; $info is its file.
payload_info() { # payload_info COMMAND
  copy_bundle
  unzip -q "$resources/Orvane.zip" -d "$work/payload"
  info=$work/payload/Orvane.app/Contents/Info.plist
  eval "$1"
  rm "$resources/Orvane.zip"
  (cd "$work/payload" && zip -qry "$resources/Orvane.zip" Orvane.app)
  (cd "$resources" && sha256sum ./*.zip | sed 's|\./||' >SHA256SUMS)
  rm -r "$work/payload"
}
deep() {
  { printf '<plist>'; yes '<array>' | head -n 200000 | tr -d '\n'; } >"$1"
}
store() { mkdir -p "$root/user/Preferences/ByHost"; }
with_preferences() { export TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS=1; options=; }
preferences() { echo "$root/user/Preferences/ByHost/com.apple.HIToolbox.$(uname -n).plist"; }
state() { echo "$root/user/InputSources.plist"; }

# ---- what must hold afterwards

mine() { [ "$(cat "$own")" = mine ]; }
same_state() { cmp -s "$(state)" "$work/state"; }
usable() { sources allow $base && sources list | grep -q "$base.pinyin"; }
preferred() { plistutil -i "$(preferences)" | grep -q $base.pinyin; }
kept() { [ "$(stat -c %s "$1.damaged")" = "$size" ]; }

row() { # NAME SETUP STATUS ERROR LOG AFTERWARDS
  begin_row "$@" || return
  # shellcheck disable=SC2086
  SUDO_ASKPASS=/bin/true timeout -k 1 30 "$bundle/Contents/MacOS/orvane-install" --root "$root" $options \
    >/dev/null 2>"$root.err"
  status=$?
  echo "$1: $status"
  unset TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS
  if [ -n "$holder" ]; then
    kill -9 "$holder"
    wait "$holder" 2>/dev/null
    holder=
  fi
  end_row "$@"
  grep -o "${root}[^ ]*" /proc/mounts | while read -r folder; do umount "$folder"; done
  rm -rf "$root"
}

run_rows "$@" 3<<'ROWS'
# The logs
log is a folder      | logs 'mkdir $log; mv $own $log/kept'  | 3 | - | - | usable && [ -s $ui_log/kept ]
log is a link        | logs 'ln -s $own $log'                | 3 | - | - | usable && mine
log is a broken link | logs 'ln -s $root/none $log'          | 3 | - | - | usable && [ ! -e $root/none ]
log is a second name | logs 'ln $own $log'                   | 3 | - | - | usable && mine
log is a pipe        | logs 'mkfifo $log'                    | 3 | - | - | usable && [ -p $log ]
no place for logs    | : >$root/tmp                          | 3  | - | - | [ -f $root/tmp ]
disk full for logs   | disk 4k $root/tmp; fill $root/tmp     | 3 | - | - | usable
# The payload and where it goes
archive damaged      | damage_archive                        | 1 | 安装失败 | does not match its checksum | [ ! -e "$root/Library/Input Methods/Orvane.app" ]
disk full            | disk 8k $root/Library; fill $root/Library | 1 | 安装失败 | 管理员授权失败: | true
disk read-only       | disk 1m $root/Library; read_only $root/Library | 1 | 安装失败 | Read-only file system | true
another installation | hold "$root/var/run/tessal_installer.lock" | 1 | 安装失败 | another installation is running | true
# The input method's information dictionary
dictionary damaged   | payload_info 'echo "<plist><dict>" >$info'          | 3 | - | 启用路径：全新安装 | [ -e "$root/Library/Input Methods/Orvane.app" ]
dictionary huge      | payload_info 'truncate -s 100M $info'               | 3 | - | 启用路径：全新安装 | [ -e "$root/Library/Input Methods/Orvane.app" ]
dictionary deep      | payload_info 'deep $info'                           | 3 | - | 启用路径：全新安装 | [ -e "$root/Library/Input Methods/Orvane.app" ]
dictionary binary    | payload_info 'plistutil -i $info -o $info.b -f bin && mv $info.b $info' | 3 | - | 启用路径：全新安装 | usable
# The state of the input sources
state damaged        | store; echo "<plist>" >$(state); size=8             | 3 | kept as | 启用路径：全新安装 | kept $(state) && usable
state deep           | store; deep $(state); size=1400007                  | 3 | kept as | 启用路径：全新安装 | kept $(state) && usable
state is a pipe      | store; mkfifo $(state)                              | 3 | - | 启用路径：全新安装 | [ -p $(state) ]
state locked         | hold $root/user/.lock                               | 3 | - | 启用路径：全新安装 | [ ! -e $(state) ]
state locked, again  | installed; cp $(state) $work/state; hold $root/user/.lock; options= | 0 | - | 启用路径：覆盖安装 | same_state && usable
disk full for stores | disk 16k $root/user; installed; sources disable $base; cp $(state) $work/state; fill $root/user | 3 | - | 启用路径：全新安装 | same_state
# The preferences
preferences written  | installed; with_preferences                         | 0 | - | 启用路径：覆盖安装 | preferred
preferences damaged  | installed; store; echo "<plist>" >$(preferences); size=8; with_preferences | 0 | kept as | 启用路径：覆盖安装 | kept $(preferences)
preferences locked   | installed; store; hold $root/user/Preferences/ByHost/.lock; with_preferences | 0 | - | 启用路径：覆盖安装 | [ ! -e $(preferences) ]
ROWS

finish
