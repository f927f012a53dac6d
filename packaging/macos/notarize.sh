#!/bin/sh
# Has Apple's notary service check an application or a disk image, and staples
# the ticket to it.
#
# usage: notarize.sh [--dry-run] APPLICATION | DISK-IMAGE
#   NOTARY_PROFILE   name of the keychain item that holds the credentials, made by
#                    xcrun notarytool store-credentials NAME; on Linux, with
#                    rcodesign, a file made by
#                    rcodesign encode-app-store-connect-api-key -o FILE …

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

take_arguments 1 "$@"
target=$operand
profile=${NOTARY_PROFILE:-}

[ -n "$profile" ] || fail "no credentials: set NOTARY_PROFILE, see --help"
if with_rcodesign; then
  # It prints the log of the service, fails if that has refused, and staples the ticket.
  run rcodesign notary-submit --api-key-file "$profile" --staple "$target"
  exit
fi
need_xcrun notarytool
need_xcrun stapler

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

# The tool may end well although the service has refused.
submit() {
  answer=$(xcrun notarytool submit "$submission" --keychain-profile "$profile" --wait) || true
  printf '%s\n' "$answer"
  [ "$(printf '%s\n' "$answer" | sed -n 's/^ *status: *//p' | tail -n 1)" != Accepted ] || return 0
  id=$(printf '%s\n' "$answer" | sed -n 's/^ *id: *//p' | head -n 1)
  [ -z "$id" ] || xcrun notarytool log "$id" --keychain-profile "$profile" >&2
  fail "the notary service has not accepted $submission"
}

if $dry_run; then
  run xcrun notarytool submit "$submission" --keychain-profile "$profile" --wait
else
  submit
fi
run xcrun stapler staple "$target"
run xcrun stapler validate "$target"
# Whether a user's Mac would open it.
case $target in
  *.app) run spctl --assess --type execute --verbose=2 "$target" ;;
  *) run spctl --assess --type open --context context:primary-signature --verbose=2 "$target" ;;
esac
[ "$submission" = "$target" ] || run rm -f "$submission"
