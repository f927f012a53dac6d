# What the scripts of this folder share; sourced, also by the bash 3.2 of macOS.
# shellcheck shell=bash
# shellcheck disable=SC2034 # the scripts read what is set here

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# The script's own leading comment is its help text.
usage() {
  sed -n '2,/^$/s/^# \{0,1\}//p' "$0"
  exit "$1"
}

# Runs a command; in a dry run prints it, quoted for a shell, instead.
run() {
  if $dry_run; then
    printf '%q ' "$@"
    echo
  else
    "$@"
  fi
}

# A dry run works on any system, without the tools.
need() {
  $dry_run || command -v "$1" >/dev/null || fail "$1 is missing: $2"
}

# Whether rcodesign (of the crate apple-codesign) signs, as it does where there is no macOS.
with_rcodesign() {
  [ "$(uname -s)" != Darwin ] && command -v rcodesign >/dev/null
}

dry_run=false
case ${1:-} in
  --dry-run)
    dry_run=true
    shift
    ;;
  --help) usage 0 ;;
esac
case ${1:--} in -*) usage 64 >&2 ;; esac
[ -e "$1" ] || $dry_run || fail "there is no $1: build it first"
application=${1%/}
here=$(cd "$(dirname "$0")" && pwd)
