#!/bin/sh
# Every screen of the installer beside the picture kept of it, at both scales. Where one
# differs, the difference is left in OUTPUT_FOLDER.
# usage: screen_pictures_test.sh PROGRAM REFERENCE_FOLDER OUTPUT_FOLDER [--renew]
# Exit status 77: the pictures were drawn with other fonts than are here.
set -eu
program=$1 reference=$2 output=$3 renew=${4:-}

fonts=$(dpkg-query -W -f '${Package} ${Version}\n' fonts-noto-cjk fonts-noto-cjk-extra 2>/dev/null) || fonts=none
if [ -z "$renew" ] && [ "$fonts" != "$(cat "$reference/fonts.txt")" ]; then
  echo "skipped: the pictures were drawn with $(cat "$reference/fonts.txt"), and here is $fonts"
  exit 77
fi

rm -rf "$output"
mkdir -p "$output"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/root" "$work/drawn"
unset DISPLAY WAYLAND_DISPLAY
for scale in 1 2; do
  QT_SCALE_FACTOR=$scale "$program" "$work/root" "$work/drawn"
done
if [ -n "$renew" ]; then
  rm -rf "$reference"
  mv "$work/drawn" "$reference"
  echo "$fonts" >"$reference/fonts.txt"
  exit
fi
status=0
for drawn in "$work"/drawn/*; do
  name=$(basename "$drawn")
  compare -metric AE -fuzz 1% "$reference/$name" "$drawn" "$output/$name" 2>"$work/count" && rm "$output/$name" && continue
  echo "$name differs in $(cat "$work/count") pixels, see $output/$name"
  status=1
done
exit $status
