#!/bin/sh
# What assistive tools are told.  usage: accessibility_test.sh APP_BUNDLE   Exit
# status 77: it cannot run here.
set -u
. "$(dirname "$0")/support.sh"

if [ "${1:-}" != --inside ]; then
  command -v dbus-run-session >/dev/null || skip "no dbus-run-session here"
  /usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null || skip "no AT-SPI for Python here"
  on_display 1280x1024 "$0" --inside "$1"
fi

use_bundle "$2"
manager=
clean_up() {
  kill $manager 2>/dev/null
  end_agents
}
start_window_manager
timeout 100 dbus-run-session -- /usr/bin/python3 "$(dirname "$0")/accessibility_test.py" "$app" "$work"
