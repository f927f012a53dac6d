#!/bin/bash
# Puts the Qt frameworks, plug-ins and QML modules that the application needs
# into its bundle, and checks that all of them find each other there.
#
# usage: bundle-qt.sh [--dry-run] APPLICATION
#   MACDEPLOYQT   the tool of the Qt that the build used (macdeployqt)

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

macdeployqt=${MACDEPLOYQT:-macdeployqt}
need "$macdeployqt" "put the bin folder of Qt into PATH, or set MACDEPLOYQT"
$dry_run || python3 -c 'import lief' 2>/dev/null || fail "the reader of Mach-O files is missing: python3 -m pip install lief"

# It signs only if it is told to; signing comes later, inside out: sign.sh.
run "$macdeployqt" "$application" "-qmldir=$here/../../ui" -always-overwrite
run python3 "$here/../../tools/macos/verify.py" "$application"
