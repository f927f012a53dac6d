#!/bin/sh
# make_zip.sh BUNDLE ARCHIVE: zips a bundle so that the same files always give the same bytes.
set -eu
bundle=$(cd "$1" && pwd -P)
archive=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

name=$(basename "$1") # which may be a link
if [ "$(uname -s)" = Darwin ]; then
  ditto "$bundle" "$work/$name" # with extended attributes, which cp drops
else
  cp -RP "$bundle" "$work/$name"
fi
cd "$work"
chmod -R u+rwX,go+rX,go-w "$name"
find "$name" -exec env TZ=UTC touch -h -t 202401010000 {} +
# The signature of a signed file that is no Mach-O file, a script say, is kept in extended attributes. Only ditto writes
# them, as "__MACOSX/…/._X", and it promises no order: it packs only bundles that have such a signature.
if [ "$(uname -s)" = Darwin ] && xattr -r "$name" | grep -q ' com\.apple\.cs\.'; then
  xattr -dr com.apple.quarantine "$name"
  TZ=UTC ditto -c -k --sequesterRsrc --keepParent "$name" new.zip
else
  find "$name" | LC_ALL=C sort | TZ=UTC zip -q -X -y new.zip -@
fi
mv -f new.zip "$archive"
