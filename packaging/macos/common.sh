# Shared by the scripts of this folder; sourced, for sh and the bash 3.2 of macOS.
# shellcheck shell=sh

script=$(basename "$0")
dry_run=false

# The script's own leading comment is its help text.
usage() {
  sed -n '2,/^$/s/^# \{0,1\}//p' "$0"
  exit "$1"
}

# take_arguments MOST ARGUMENT…: sets dry_run, and the operands, of which there is at
# least one: operand and, if MOST is 2, second_operand.
take_arguments() {
  operands_left=$1
  operand=
  second_operand=
  shift
  for argument; do
    case $argument in
      --dry-run) dry_run=true ;;
      --help) usage 0 ;;
      -*) usage 64 >&2 ;;
      *)
        [ "$operands_left" -gt 0 ] || usage 64 >&2
        operands_left=$((operands_left - 1))
        # shellcheck disable=SC2034 # its caller reads it
        if [ -z "$operand" ]; then operand=${argument%/}; else second_operand=$argument; fi
        ;;
    esac
  done
  [ -n "$operand" ] || usage 64 >&2
}

fail() {
  echo "$script: $*" >&2
  exit 1
}

# Runs a command; in a dry run prints it, quoted for a shell, instead.
run() {
  if $dry_run; then
    for word; do
      case $word in
        *[!A-Za-z0-9_./:=@%+,-]* | "") printf "'%s' " "$(printf %s "$word" | sed "s/'/'\\\\''/g")" ;;
        *) printf '%s ' "$word" ;;
      esac
    done | sed 's/ $//'
    echo
  else
    "$@"
  fi
}

# A dry run works on any system, without the tools.
need() {
  $dry_run || command -v "$1" >/dev/null 2>&1 || fail "$1 is missing: $2"
}

need_xcrun() {
  need xcrun "install Xcode"
  $dry_run || xcrun --find "$1" >/dev/null 2>&1 || fail "$1 is missing: install Xcode 13 or later"
}

need_application() {
  [ -f "$1/Contents/Info.plist" ] || fail "no application at $1: build it first"
}

# Whether rcodesign (of the crate apple-codesign) signs, as it does where there is no
# macOS.
with_rcodesign() {
  [ "$(uname -s)" != Darwin ] && command -v rcodesign >/dev/null 2>&1
}

# The name of an application's program.
executable_of() {
  sed -n '/<key>CFBundleExecutable</{n;s/.*<string>\(.*\)<.*/\1/p;}' "$1/Contents/Info.plist"
}

# "-" signs ad hoc, which needs no certificate.
need_identity() {
  [ -n "$1" ] || fail "no signing identity: set SIGN_IDENTITY, for example to 'Developer ID Application: NAME (TEAM)', or to - for an ad-hoc signature"
  [ "$1" = - ] && return
  if with_rcodesign; then
    [ -f "$1" ] || fail "no file $1: on this system SIGN_IDENTITY is a file with the certificate and its key (.p12)"
    [ -f "${SIGN_PASSWORD_FILE:-}" ] || fail "set SIGN_PASSWORD_FILE to a file with the password of $1"
    return
  fi
  $dry_run || security find-identity -v -p codesigning | grep -qF -- "$1" ||
    fail "the keychain holds no valid signing identity '$1': see security find-identity -v -p codesigning"
}
