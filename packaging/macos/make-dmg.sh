#!/bin/sh
# Makes a compressed disk image that holds the application.
#
# usage: make-dmg.sh [--dry-run] APPLICATION [DISK-IMAGE]
#   SIGN_IDENTITY   signs the image too, if set and not -

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

application=
image=
for argument; do
  case $argument in
    --dry-run) dry_run=true ;;
    --help) usage 0 ;;
    -*) usage 64 >&2 ;;
    *) if [ -z "$application" ]; then application=${argument%/}; else image=$argument; fi ;;
  esac
done
[ -n "$application" ] || usage 64 >&2
image=${image:-${application%.app}.dmg}
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
