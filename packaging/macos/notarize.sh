#!/bin/bash
# Has Apple's notary service check an application, a disk image or a package, and
# staples the ticket to it.
#
# usage: notarize.sh [--dry-run] APPLICATION | DISK-IMAGE | PACKAGE
#   NOTARY_PROFILE   name of the keychain item that holds the credentials, made by
#                    xcrun notarytool store-credentials NAME; on Linux, with
#                    rcodesign, a file made by
#                    rcodesign encode-app-store-connect-api-key -o FILE …

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

profile=${NOTARY_PROFILE:?"is not set: the name of the credentials, see --help"}
if with_rcodesign; then
  # It prints the log of the service, fails if that has refused, and staples the ticket.
  run rcodesign notary-submit --api-key-file "$profile" --staple "$application"
  exit
fi
need xcrun "install Xcode 13 or later"

submission=$application
case $application in
  *.app)
    # The service takes archives; the ticket goes to the application itself.
    submission=${application%.app}-notarize.zip
    run ditto -c -k --keepParent "$application" "$submission"
    set -- --type execute
    ;;
  *.pkg) set -- --type install ;;
  *) set -- --type open --context context:primary-signature ;;
esac
# It may end well although the service has refused. Then there is no ticket to staple, and
# xcrun notarytool log ID says why.
run xcrun notarytool submit "$submission" --keychain-profile "$profile" --wait
run xcrun stapler staple "$application"
# Whether a user's Mac would open it.
run spctl --assess "$@" --verbose=2 "$application"
[ "$submission" = "$application" ] || run rm -f "$submission"
