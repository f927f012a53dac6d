#!/bin/sh
# What clang-tidy says of one source. It does not look at a source again as long as
# the source and all headers stay as they are. usage: tidy.sh SOURCE
set -u
seen=build/tidy/$1
mkdir -p "$(dirname "$seen")"
state=$({ cat .clang-tidy "$1"; git ls-files -z '*.h' | xargs -0 cat; } | sha256sum)
[ "$(cat "$seen" 2>/dev/null)" != "$state" ] || exit 0
clang-tidy -p build/release --quiet "$1" 2>/dev/null || exit 1
echo "$state" >"$seen"
