#!/bin/sh
# Puts the Qt frameworks, plug-ins and QML modules that the application needs
# into its bundle, and checks that nothing else is loaded from outside.
#
# usage: bundle-qt.sh [--dry-run] APPLICATION
#   MACDEPLOYQT   the tool of the Qt that the build used (macdeployqt)

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

take_arguments 1 "$@"
application=$operand
macdeployqt=${MACDEPLOYQT:-macdeployqt}
screens=$(cd "$(dirname "$0")/../../ui" && pwd)

need_application "$application"
need "$macdeployqt" "put the bin folder of Qt into PATH, or set MACDEPLOYQT"
need otool "install the command line tools (xcode-select --install)"

# Signing comes later, inside out: sign.sh.
run "$macdeployqt" "$application" "-qmldir=$screens" -always-overwrite -no-codesign

if ! $dry_run; then
  find "$application/Contents" -type f \( -perm -u+x -o -name '*.dylib' \) | while read -r file; do
    otool -L "$file" 2>/dev/null | sed -n 's/^[[:space:]]\{1,\}\(.*\) (compat.*/\1/p' |
      grep -vE '^(@rpath|@executable_path|@loader_path|/System/Library|/usr/lib)/' |
      sed "s|^|$file loads |"
  done | grep . >&2 && fail "the bundle is not complete"
fi
exit 0
