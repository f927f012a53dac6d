#!/usr/bin/env bash
# Checks the macOS side on Linux: compiles all of it with every test, links the tests,
# and runs the static analyser. See docs/macos.md.
#
#   tools/macos-check.sh            check
#   tools/macos-check.sh --prove    show that a mistake of each kind is caught

set -euo pipefail
cd "$(dirname "$0")/.."
readonly build=build/macos/arm64

start=$SECONDS
export ZIG_GLOBAL_CACHE_DIR=${XDG_CACHE_HOME:-$HOME/.cache}/orvane-macos-check/objects
export ZIG_LOCAL_CACHE_DIR=$ZIG_GLOBAL_CACHE_DIR
case ${1:-} in
  "")
    # Nothing in the tests goes by the architecture, so one does for them.
    ARCHITECTURES=arm64 tools/macos/build.sh all
    python3 tools/macos/check.py analyse "$build"
    ;;
  --prove)
    ARCHITECTURES=arm64 tools/macos/build.sh orvane-installer orvane-install
    python3 tools/macos/check.py prove "$build"
    ;;
  *)
    echo "usage: tools/macos-check.sh [--prove]" >&2
    exit 64
    ;;
esac
echo "passed in $((SECONDS - start)) s"
