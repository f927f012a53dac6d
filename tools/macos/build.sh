#!/usr/bin/env bash
# Builds targets for macOS, each architecture in a folder of its own below build/macos.
# usage: build.sh TARGET…
#   ARCHITECTURES   arm64 x86_64

set -euo pipefail
cd "$(dirname "$0")/../.."
readonly cache=${XDG_CACHE_HOME:-$HOME/.cache}/orvane-macos-check

folders=$(tools/macos/get.sh)
{ read -r tools && read -r qt; } <<<"$folders"
export ZIG_GLOBAL_CACHE_DIR=$cache/objects ZIG_LOCAL_CACHE_DIR=$cache/objects
# It would take a word of the compiler's name for a source.
unset CMAKE_CXX_COMPILER_LAUNCHER

for architecture in ${ARCHITECTURES:-arm64 x86_64}; do
  build=build/macos/$architecture
  log=$build/configure.log
  mkdir -p "$build"
  cmake -S . -B "$build" -G Ninja -D CMAKE_BUILD_TYPE=Release \
    -D CMAKE_TOOLCHAIN_FILE="$PWD/tools/macos/toolchain.cmake" \
    -D ORVANE_ARCHITECTURE="$architecture" -D ORVANE_MACOS_TOOLS="$tools" \
    -D ORVANE_MACOS_QT="$qt" >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
  echo "macos: building for $architecture"
  cmake --build "$build" --target "$@"
done
