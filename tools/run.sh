#!/bin/sh
# Opens the built installer on a root of its own below build/; without a display,
# shows the whole installation in screenshots instead.  usage: run.sh APP_BUNDLE
set -eu
app=$1
if [ "$(uname -s)" = Darwin ]; then
  exec open -W "$app"
elif [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "no display here: doing what 'make demo' does"
  exec "$(dirname "$0")/demo.sh" "$app" build/demo
fi
mkdir -p build/preview
exec "$app/Contents/MacOS/Orvane Installer" --root build/preview
