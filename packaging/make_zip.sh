#!/bin/sh
# make_zip.sh BUNDLE ARCHIVE: zips a bundle so that the same files always give the same bytes.
set -eu
bundle=$1
archive=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

name=$(basename "$bundle")
cp -RP "$bundle" "$work/$name"
cd "$work"
chmod -R u+rwX,go+rX,go-w "$name"
find "$name" -exec env TZ=UTC touch -h -t 202401010000 {} +
find "$name" | LC_ALL=C sort | TZ=UTC zip -q -X -y new.zip -@
mv -f new.zip "$archive"
