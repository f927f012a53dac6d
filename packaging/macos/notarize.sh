#!/bin/sh
# Has Apple's notary service check an application or a disk image, and staples
# the ticket to it.
#
# usage: notarize.sh [--dry-run] APPLICATION | DISK-IMAGE
#   NOTARY_PROFILE   name of the keychain item that holds the credentials, made by
#                    xcrun notarytool store-credentials NAME

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

take_arguments 1 "$@"
target=$operand
profile=${NOTARY_PROFILE:-}

need_xcrun notarytool
need_xcrun stapler
[ -n "$profile" ] || fail "no credentials: set NOTARY_PROFILE to the name given to xcrun notarytool store-credentials"

case $target in
  *.app)
    need_application "$target"
    # The service takes archives; the ticket goes to the application itself.
    submission=${target%.app}-notarize.zip
    run ditto -c -k --keepParent "$target" "$submission"
    ;;
  *)
    $dry_run || [ -f "$target" ] || fail "no such file: $target"
    submission=$target
    ;;
esac
run xcrun notarytool submit "$submission" --keychain-profile "$profile" --wait
# Fails if the service has refused: then there is no ticket.
run xcrun stapler staple "$target"
run xcrun stapler validate "$target"
[ "$submission" = "$target" ] || run rm -f "$submission"
