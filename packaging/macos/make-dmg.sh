#!/bin/sh
# Makes a compressed disk image that holds the application.
#
# usage: make-dmg.sh [--dry-run] APPLICATION [DISK-IMAGE]
#   SIGN_IDENTITY   signs the image too, if set and not -

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

take_arguments 2 "$@"
application=$operand
image=${second_operand:-${application%.app}.dmg}
identity=${SIGN_IDENTITY:-}

need_application "$application"
need hdiutil "disk images are made on macOS only"
if [ -n "$identity" ] && [ "$identity" != - ]; then
  need codesign "install the command line tools (xcode-select --install)"
  need_identity "$identity"
fi

name=$(basename "$application" .app)
staging=$(dirname "$image")/$name-image
run rm -rf "$staging"
run mkdir -p "$staging"
run ditto "$application" "$staging/$name.app"
run hdiutil create -volname "$name" -srcfolder "$staging" -format UDZO -ov "$image"
run rm -rf "$staging"
if [ -n "$identity" ] && [ "$identity" != - ]; then
  run codesign --force --sign "$identity" --timestamp "$image"
fi
