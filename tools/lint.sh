#!/bin/sh
# The layout of every source, and what clang-tidy says of those of this system.
set -eu
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format --dry-run --Werror
git ls-files '*.cpp' ':!platform/macos' | xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet
