#!/usr/bin/env bash
# Gets what building for macOS on Linux needs, pinned by hash, into a cache folder:
# the cross compiler and the reader of Mach-O files (requirements.txt), and Qt for
# macOS (qt-requirements.txt). Prints the two folders, a line each.

set -euo pipefail
cd "$(dirname "$0")"
readonly cache=${XDG_CACHE_HOME:-$HOME/.cache}/orvane-macos-check

say() { echo "macos: $*" >&2; }

# get FOLDER LIST WHAT COMMAND…: unless the folder was made from this content of the
# list by this script, the command fills a new one, given as $fresh.
get() {
  local folder=$1 what=$3 made_from
  made_from=$(cat "$2" get.sh | sha256sum)
  shift 3
  [[ $(cat "$folder/made-from" 2>/dev/null) != "$made_from" ]] || return 0
  fresh=$folder.$$
  mkdir -p "$fresh"
  say "getting $what, once"
  if ! "$@" >"$fresh.log" 2>&1; then
    tail -n 5 "$fresh.log" >&2
    rm -rf "$fresh" "$fresh.log"
    say "$what cannot be had"
    exit 1
  fi
  echo "$made_from" >"$fresh/made-from"
  rm -rf "$folder" "$fresh.log"
  mv -T "$fresh" "$folder"
}

pip() { python3 -m pip --disable-pip-version-check "$@"; }

install_tools() {
  pip install --target "$fresh" --only-binary=:all: --no-deps --require-hashes \
    -r requirements.txt || return
  # The linker writes this into each program as the system it was made for, and
  # macOS treats the program as one of then. It is what Qt 6.4 was made for.
  sed -i 's/"MinimalDisplayName":"[0-9.]*"/"MinimalDisplayName":"13.0"/' \
    "$fresh/ziglang/lib/libc/darwin/SDKSettings.json"
}

# Without its Python. The linker goes by the extension.
install_qt() {
  pip install --target "$fresh" --no-compile --only-binary=:all: --no-deps --require-hashes \
    --platform macosx_11_0_universal2 --python-version 3.9 -r qt-requirements.txt || return
  find "$fresh/PySide6" -mindepth 1 -maxdepth 1 ! -name Qt -exec rm -r {} +
  local framework name
  for framework in "$fresh"/PySide6/Qt/lib/*.framework; do
    name=$(basename "$framework" .framework)
    ln -s "$name.framework/Versions/A/$name" "${framework%/*}/lib$name.dylib" || return
  done
}

[[ $(uname -sm) == "Linux x86_64" ]] || {
  say "the cross compiler is pinned for Linux on x86_64 only"
  exit 1
}
mkdir -p "$cache"
get "$cache/tools" requirements.txt "the cross compiler (100 MB)" install_tools
get "$cache/qt" qt-requirements.txt "Qt for macOS (140 MB)" install_qt
printf '%s\n' "$cache/tools" "$cache/qt/PySide6/Qt"
