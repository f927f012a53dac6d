#!/bin/bash
# Signs the application from the inside out, with the hardened runtime.
#
# usage: sign.sh [--dry-run] APPLICATION
#   SIGN_IDENTITY   name or hash of the certificate, or - to sign ad hoc
# On Linux, with rcodesign:
#   SIGN_IDENTITY        file with the certificate and its key (.p12), or -
#   SIGN_PASSWORD_FILE   file with the password of that file

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

identity=${SIGN_IDENTITY:?"is not set: the name of a certificate, or - for an ad-hoc signature"}

if with_rcodesign; then
  # It goes from the inside out by itself.
  set --
  [ "$identity" = - ] ||
    set -- --for-notarization --p12-file "$identity" --p12-password-file "${SIGN_PASSWORD_FILE:?"is not set"}"
  run rcodesign sign "$@" "$application"
  exit
fi
need codesign "install the command line tools (xcode-select --install)"

# Under the hardened runtime a program loads only code of its own team, and an
# ad-hoc signature has none.
sign() {
  if [ "$identity" = - ]; then
    run codesign --force --sign - "$@"
  else
    run codesign --force --sign "$identity" --options runtime --timestamp "$@"
  fi
}

contents=$application/Contents
# The seal of a folder covers what lies in it: a path sorts after its folder's.
find "$contents" -name '*.framework' -o -name '*.dylib' -type f | sort -r |
  while read -r code; do sign "$code"; done
# The main program bears the application's name, and is signed with it.
find "$contents/MacOS" -type f -perm -u+x ! -name "$(basename "$application" .app)" | sort |
  while read -r code; do sign "$code"; done
sign "$application"
run codesign --verify --deep --strict --verbose=2 "$application"
