#!/bin/bash
# Makes a compressed disk image that holds the application.
#
# usage: make-dmg.sh [--dry-run] APPLICATION [DISK-IMAGE]
#   SIGN_IDENTITY   signs the image too, if set and not -

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

image=${2:-${application%.app}.dmg}
need hdiutil "disk images are made on macOS only"

name=$(basename "$application" .app)
staging=$(dirname "$image")/$name-image
run rm -rf "$staging"
run mkdir -p "$staging"
run ditto "$application" "$staging/$name.app"
run hdiutil create -volname "$name" -srcfolder "$staging" -format UDZO -ov "$image"
run rm -rf "$staging"
case ${SIGN_IDENTITY:--} in
  -) ;;
  *) run codesign --force --sign "$SIGN_IDENTITY" --timestamp "$image" ;;
esac
