#!/bin/sh
# Every screen beside the picture kept of it, at both scales.
# usage: screen_pictures_test.sh PROGRAM APP_BUNDLE REFERENCE_FOLDER OUTPUT_FOLDER [--renew]
# Exit status 77: the pictures were drawn with other fonts than are here.
set -eu
program=$1 app=$2 reference=$3 output=$4 renew=${5:-}

fonts=$(dpkg-query -W -f '${Package} ${Version}\n' fonts-noto-cjk fonts-noto-cjk-extra 2>/dev/null) || fonts=none
if [ -n "$renew" ]; then
  rm -rf "$reference"
  mkdir -p "$reference"
  echo "$fonts" >"$reference/fonts.txt"
elif [ "$fonts" != "$(cat "$reference/fonts.txt")" ]; then
  echo "skipped: the pictures were drawn with $(cat "$reference/fonts.txt"), and here is $fonts"
  exit 77
fi

rm -rf "$output"
mkdir -p "$output"
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
unset DISPLAY WAYLAND_DISPLAY
# An input method that is installed and waits to be allowed.
SUDO_ASKPASS=/bin/true "$app/Contents/MacOS/orvane-install" --root "$root" --no-wait >/dev/null || [ $? -eq 3 ]
status=0
for scale in 1 2; do
  QT_SCALE_FACTOR=$scale "$program" "$root" "$reference" "$output" $renew || status=1
done
exit $status
