#!/bin/sh
# Faults around the real programs, a row each: what is broken, and how the run must
# end.  usage: faults_test.sh APP_BUNDLE [NAME...]
#
# A set-up is made of the functions below. Whatever happens, no process of the run
# may be left, and a signal is answered in time.
# shellcheck disable=SC2016,SC2034,SC2086,SC2154,SC2317 # the set-ups are evaluated

set -u
. "$(dirname "$0")/support.sh"
. "$(dirname "$0")/fault_rows.sh"

use_bundle "$1"
shift
chmod 755 "$work"
unset DISPLAY WAYLAND_DISPLAY

readonly slowest_answer=3000 # milliseconds; alone on a machine it takes 600

# ---- set-ups

# The script does this first, then what it always does.
script() {
  copy_bundle
  {
    echo 'log=$INSTALL_ROOT/tmp/tessal_installer.log'
    echo 'hold() { echo holding >>"$log"; until [ -e "$INSTALL_ROOT/go" ]; do sleep 0.05; done; }'
    echo "$1"
    cat "$app/Contents/Resources/install.sh"
  } >"$resources/install.sh"
}
# When the UI log or standard error says so, and once only.
when() { event=$1 action=$2; }
go() { : >"$root/go"; }
signal() { signalled=$(date +%s%N); kill "-$1" "$front"; }
tail_process() { pgrep -f -- "-F $root/tmp"; }
# The installer does not see these programs.
hide() {
  [ -n "$namespace" ] || skipped="no mount namespaces here"
  hidden=$*
  runner=hiding
}
hiding() {
  $namespace sh -c 'mkdir -p "$1" && mount --rbind /usr/bin "$1" && mount -t tmpfs tmpfs /usr/bin &&
    "$1/cp" -as "$1/." /usr/bin/ && cd /usr/bin &&
    for name in $2; do rm -f "$name"; [ ! -e "$3" ] || cp "$3" "$name"; done
    cd / && shift 3 && exec "$@"' - "$work/bin" "$hidden" "$work/replacement" "$@"
}
# It finds another program in the place of this one.
replace() {
  hide "$1"
  printf '#!/bin/sh\n%s\n' "$2" >"$work/replacement"
  chmod 755 "$work/replacement"
}
# What the installer is started by.
by() { runner=$1; }
# As a user of its own, who may have so many processes and threads.
crowded() { prlimit --nproc="$limit" setpriv --reuid=54321 --clear-groups "$@"; }
few_processes() {
  [ "$(id -u)" -eq 0 ] || skipped="only root can change the user"
  limit=$1 runner=crowded
  copy_bundle # the checkout may be where only root gets
  chown 54321 "$root" 2>/dev/null
}
without_streams() { "$@" <&- >&- 2>&-; }
open_mask() { (umask 0; exec "$@"); }
# In a terminal in which these keys are typed once the prompt is there.
terminal() { keys=$1 runner=typed; }
typed() {
  command=
  for word; do command="$command '$word'"; done
  in_terminal "$keys" "$root.tty" "$command 2>'$root.err'"
}
own_askpass() { askpass=; }

# ---- the run of a row

untouched() { [ ! -s "$ui_log" ] && [ ! -e "$root/Library" ]; }
happened() {
  case $event in
    prompt) [ -e "$work/prompt" ] ;;
    backlog) [ "$(stat -c %s "$ui_log")" -gt 1000000 ] ;;
    *) grep -qF -- "$event" "$ui_log" ;;
  esac
}

row() { # NAME SETUP STATUS ERROR LOG AFTERWARDS
  askpass=/bin/true event='' action='' runner='env' signalled='' limit='' keys='' hidden=''
  rm -rf "$work/prompt" "$work/replacement"
  begin_row "$@" || return
  export SUDO_ASKPASS="$askpass"
  $runner "$bundle/Contents/MacOS/orvane-install" --root "$root" $options \
    >"$root.out" 2>"$root.err" & front=$!
  if [ -n "$event" ]; then await "$1: $event" happened && eval "$action"; fi
  wait_for_end $front
  status=$?
  took=
  if [ -n "$signalled" ]; then
    took=$((($(date +%s%N) - signalled) / 1000000))
    [ $took -le $slowest_answer ] || fail "$1: answered after $took ms"
    took=" (answered in $took ms)"
  fi
  echo "$1: $status$took"
  end_row "$@"
  await "$1: no process left" nothing_left || cat "$work/left"
  [ -z "$keys" ] || ! grep -qF geheim "$root.tty" || fail "$1: the password is shown"
  # The next run is as if nothing had been.
  if [ "$3" -gt 128 ]; then
    runner='env'
    SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/orvane-install" --root "$root" --no-wait >/dev/null 2>&1
    expect "$1: exit status of the next run" $? 3
  fi
  [ -z "$(find "$root/Library" "$root/Applications" -perm /022 ! -type l 2>/dev/null)" ] ||
    fail "$1: others may write what is installed"
  rm -rf "$root"
}

asleep=$work/asleep # an askpass program that waits for an answer
printf '#!/bin/sh\n: >"%s/prompt"\nexec sleep 50\n' "$work" >"$asleep"
printf 'no program' >"$work/not-executable"
printf '#!/no/such/shell\n' >"$work/bad-interpreter"
chmod 755 "$asleep" "$work/bad-interpreter"

run_rows "$@" 3<<'ROWS'
# Outcomes
refused                 | askpass=/bin/false                                   | 2   | 未获得管理员授权 | - | untouched
no script               | copy_bundle; rm $resources/install.sh                | 1   | 找不到安装脚本 install.sh | 未找到 install.sh
script installs nothing | script 'exit 0'                                      | 1   | 未检测到已安装的输入法 | 开始注册并激活输入法
script fails            | script 'echo 磁盘已满 >&2; exit 3'                    | 1   | 安装失败 | 管理员授权失败: 磁盘已满
waiting, SIGTERM        | options=; when trigger=enter-waiting 'signal TERM'   | 3   | - | -
waiting, SIGINT         | options=; when trigger=enter-waiting 'signal INT'    | 3   | - | -
# Programs that are missing
tail missing            | script "tail() { $work/bin/tail \"\$@\"; }"; hide tail   | 3   | - | 无法启动日志跟踪: /usr/bin/tail: No such file
bsdtar missing          | hide bsdtar                                          | 1   | 安装失败 | bsdtar: not found
killall missing         | installed; hide killall; options=                    | 0   | - | 启用路径：覆盖安装
killall hangs           | installed; replace killall "exec sleep 60"; options=  | 0   | - | 启用路径：覆盖安装
setpriv missing         | hide setpriv                                         | 3   | - | 启用路径：全新安装
askpass missing         | askpass=$work/none                                   | 1   | 安装失败 | none: No such file or directory
askpass not executable  | askpass=$work/not-executable                         | 1   | 安装失败 | not-executable: Permission denied
askpass without shell   | askpass=$work/bad-interpreter                        | 1   | 安装失败 | bad-interpreter
no display, no terminal | own_askpass; by "setsid -w"                           | 1   | 安装失败 | cannot ask for the password: no display and no terminal
# A terminal without a display
typed                   | own_askpass; terminal "geheim\n"                     | 3   | - | 启用路径：全新安装
typed, then interrupted | own_askpass; terminal "geheim\003"                   | 2   | 未获得管理员授权 | - | untouched
end of input            | own_askpass; terminal "\004"                         | 2   | 未获得管理员授权 | - | untouched
# The log and its follower
tail killed             | script hold; when holding 'kill -9 $(tail_process); go'     | 3 | - | 启用路径：全新安装
log deleted             | script hold; when holding 'rm $root/tmp/tessal_installer.log; go' | 3 | - | 启用路径：全新安装
log replaced            | script hold; when holding 'echo new >$root/new; mv $root/new $root/tmp/tessal_installer.log; go' | 3 | - | 启用路径：全新安装
log truncated           | script hold; when holding ': >$root/tmp/tessal_installer.log; go' | 3 | - | 启用路径：全新安装
# The script
script killed           | script 'kill -9 $$'                                  | 1   | 安装失败 | 管理员授权失败: 
script says no UTF-8    | script 'printf "a\377b" >&2; exit 9'                 | 1   | 安装失败 | 管理员授权失败: a
script stopped          | script hold; when holding 'signal TERM'              | 1   | 安装失败 | 管理员授权失败: 
script says why         | script 'trap "echo stopped >&2; exit 9" TERM; echo holding >>"$log"; sleep 50 & wait'; when holding 'signal TERM' | 1 | 安装失败 | 管理员授权失败: stopped
script ignores TERM     | script 'trap "" TERM INT HUP; hold'; when holding 'signal TERM' | 1 | 安装失败 | 管理员授权失败: 
script ignores INT      | script 'trap "" TERM INT HUP; hold'; when holding 'signal INT'  | 1 | 安装失败 | 管理员授权失败: 
child ignores TERM      | script '(trap "" TERM; sleep 50) & hold'; when holding 'signal TERM' | 1 | 安装失败 | 管理员授权失败: 
endless log             | script 'trap "" TERM; yes holding >>"$log"'; when holding 'signal TERM' | 1 | 安装失败 | 管理员授权失败: 
a gigabyte of log       | script 'truncate -s 1G "$log"; hold'; when backlog 'signal TERM' | 1 | 安装失败 | 管理员授权失败: 
prompt dismissed        | askpass=$asleep; when prompt 'signal TERM'           | 2   | 未获得管理员授权 | - | untouched
# The installer killed, and started again
killed at the prompt    | askpass=$asleep; when prompt 'kill -9 $front'        | 137 | - | -
killed with the script  | script hold; when holding 'kill -9 $front'           | 137 | - | -
killed with a child     | script 'sleep 50 & hold'; when holding 'kill -9 $front' | 137 | - | -
killed while waiting    | options=; when trigger=enter-waiting 'kill -9 $front' | 137 | - | -
# Too little of something
no process              | few_processes 2                                      | 1   | 安装失败 | 管理员授权失败: /usr/bin/setpriv: Resource temporarily unavailable
# Odd surroundings
German, then Chinese    | by "env LC_ALL=C.UTF-8 LANGUAGE=de:zh_CN"; askpass=/bin/false | 2 | 未获得管理员授权 | - | untouched
no locale               | by "env LC_ALL=C"                                    | 3   | - | 启用路径：全新安装
empty environment       | by "setsid -w env -i"; own_askpass                             | 1   | 安装失败 | cannot ask for the password
PATH and IFS            | by "env PATH=/none IFS=/t"                           | 3   | - | 启用路径：全新安装
umask 0                 | by open_mask                                         | 3   | - | 启用路径：全新安装
closed descriptors      | by without_streams                                   | 3   | - | 启用路径：全新安装
root not UTF-8          | root=$work/$(printf "a\377b"); mkdir "$root"       | 64  | not UTF-8 | -
ROWS

finish
