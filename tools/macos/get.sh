#!/usr/bin/env bash
# Gets what building for macOS on Linux needs, pinned by hash: into FOLDER/tools the
# cross compiler and the reader of Mach-O files (requirements.txt), and into FOLDER/qt
# Qt for macOS (qt-requirements.txt).
#
# usage: get.sh FOLDER

set -euo pipefail
cd "$(dirname "$0")"
readonly fresh=$1/fresh.$$
trap 'rm -rf "$fresh"' EXIT

# get FOLDER LIST WHAT COMMAND…: unless the folder was made from this content of the
# list by this script, the command fills a new one, $fresh.
get() {
  local folder=$1 what=$3 made_from
  made_from=$(cat "$2" get.sh | sha256sum)
  shift 3
  [[ $(cat "$folder/made-from" 2>/dev/null) != "$made_from" ]] || return 0
  echo "macos: getting $what, once"
  mkdir -p "$fresh"
  "$@"
  echo "$made_from" >"$fresh/made-from"
  rm -rf "$folder"
  mv -T "$fresh" "$folder"
}

pip_install() {
  python3 -m pip --disable-pip-version-check install --quiet --target "$fresh" \
    --only-binary=:all: --no-deps --require-hashes "$@"
}

install_tools() {
  pip_install -r requirements.txt
  # The linker writes this into each program as the system it was made for, and
  # macOS treats the program as one of then. It is what Qt 6.4 was made for.
  sed -i 's/"MinimalDisplayName":"[0-9.]*"/"MinimalDisplayName":"13.0"/' \
    "$fresh/ziglang/lib/libc/darwin/SDKSettings.json"
}

# Without its Python. The linker goes by the extension.
install_qt() {
  pip_install --no-compile --platform macosx_11_0_universal2 --python-version 3.9 -r qt-requirements.txt
  find "$fresh/PySide6" -mindepth 1 -maxdepth 1 ! -name Qt -exec rm -r {} +
  local framework name
  for framework in "$fresh"/PySide6/Qt/lib/*.framework; do
    name=$(basename "$framework" .framework)
    ln -s "$name.framework/Versions/A/$name" "${framework%/*}/lib$name.dylib"
  done
}

[[ $(uname -sm) == "Linux x86_64" ]] || {
  echo "macos: the cross compiler is pinned for Linux on x86_64 only" >&2
  exit 1
}
get "$1/tools" requirements.txt "the cross compiler (100 MB)" install_tools
get "$1/qt" qt-requirements.txt "Qt for macOS (140 MB)" install_qt
