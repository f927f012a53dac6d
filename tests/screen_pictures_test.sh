#!/bin/sh
# Every screen beside the picture kept of it, at both scales. Where one differs, the
# difference is left in OUTPUT_FOLDER.
# usage: screen_pictures_test.sh PROGRAM APP_BUNDLE REFERENCE_FOLDER OUTPUT_FOLDER [--renew]
# Exit status 77: the pictures were drawn with other fonts than are here.
set -eu
program=$1 app=$2 reference=$3 output=$4 renew=${5:-}

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
# An input method that is installed and waits to be allowed.
SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/orvane-install" --root "$work/root" --no-wait >/dev/null || [ $? -eq 3 ]
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
