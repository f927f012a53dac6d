#!/bin/sh
# Installs what building, testing and showing the installer needs. It does nothing
# when nothing is missing. With --check it installs nothing, and only fails.
set -eu

if [ "$(uname -s)" = Darwin ]; then
  command -v brew >/dev/null || { echo "Homebrew is needed: https://brew.sh" >&2; exit 1; }
  for formula in cmake ninja qt@6 googletest utf8cpp cli11 nlohmann-json librsvg; do
    brew list --versions "$formula" >/dev/null 2>&1 || missing="${missing:-} $formula"
  done
  # shellcheck disable=SC2086
  if [ -n "${missing:-}" ]; then
    [ "${1:-}" != --check ] || { echo "missing:$missing; 'make setup' installs it" >&2; exit 1; }
    brew install $missing
  fi
  exit 0
fi

packages='
  cmake g++ ninja-build pkg-config
  qt6-base-dev qt6-declarative-dev qt6-declarative-dev-tools
  qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript
  qml6-module-qtquick qml6-module-qtquick-templates qml6-module-qtquick-window
  libcli11-dev nlohmann-json3-dev libplist-dev libplist-utils libutfcpp-dev
  libgtest-dev
  fonts-noto-cjk fonts-noto-cjk-extra librsvg2-bin icnsutils
  zip unzip libarchive-tools openssl perl-base sudo
  xvfb xauth xdotool openbox x11-utils imagemagick webp procps
  dbus-daemon at-spi2-core python3-gi gir1.2-atspi-2.0
  clang-14 clang-format clang-tidy libclang-rt-14-dev shellcheck
  clang-19 llvm-14 python3-pip
  ansible-core openssh-client mandoc zsh fish
'
missing=
for package in $packages; do
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] ||
    missing="$missing $package"
done
[ -n "$missing" ] || exit 0
[ "${1:-}" != --check ] || { echo "missing:$missing; 'make setup' installs it" >&2; exit 1; }

echo "installing:$missing"
as_root=
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "run as root, or install:$missing" >&2; exit 1; }
  as_root=sudo
fi
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -q
# shellcheck disable=SC2086
$as_root apt-get install -q -y --no-install-recommends $missing
