#!/bin/sh
# Installs what these targets of make need, all at once. It does nothing when nothing is
# missing. With --check it installs nothing, and only fails.
#
# usage: setup.sh [--check] [TARGET…]    "setup" stands for all of them
set -eu

build='
  cmake g++ ninja-build
  qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools
  qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-templates
  qml6-module-qtquick-window
  libcli11-dev nlohmann-json3-dev libplist-utils libutfcpp-dev
  fonts-noto-cjk fonts-noto-cjk-extra librsvg2-bin
  zip libarchive-tools openssl perl-base sudo
'
screenshots='xvfb xauth xdotool openbox x11-utils imagemagick webp'
test='
  libgtest-dev procps dbus-daemon at-spi2-core python3-gi gir1.2-atspi-2.0
  ansible-core mandoc zsh fish
'
check='libgtest-dev clang-14 libclang-rt-14-dev clang-format clang-tidy shellcheck'
macos='libgtest-dev llvm-14 python3-pip icnsutils'

only_check=false
[ "${1:-}" != --check ] || { only_check=true && shift; }
packages=$build
for target; do
  case $target in
    run) [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || packages="$packages $screenshots" ;;
    demo | bench) packages="$packages $screenshots" ;;
    test) packages="$packages $screenshots $test" ;;
    check | format) packages="$packages $check" ;;
    macos) packages="$packages $macos" ;;
    setup) packages="$packages $screenshots $test $check $macos" ;;
  esac
done

if [ "$(uname -s)" = Darwin ]; then
  command -v brew >/dev/null || { echo "Homebrew is needed: https://brew.sh" >&2 && exit 1; }
  packages='cmake ninja qt@6 googletest utf8cpp cli11 nlohmann-json librsvg libicns'
  is_there() { brew list --versions "$1" >/dev/null 2>&1; }
  install() { brew install "$@"; }
elif command -v apt-get >/dev/null; then
  is_there() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }
  install() {
    as_root=
    [ "$(id -u)" -eq 0 ] || as_root=sudo
    $as_root apt-get update -q
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "$@"
  }
else
  echo "no apt-get here: tools/setup.sh names the packages, as Debian calls them; install them and use cmake" >&2
  exit 1
fi

missing=
for package in $packages; do
  case " $missing " in *" $package "*) continue ;; esac
  is_there "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0
! $only_check || { echo "missing:$missing; 'make setup' installs it" >&2 && exit 1; }
echo "installing:$missing"
# shellcheck disable=SC2086
install $missing
