#!/bin/sh
# Puts the Qt frameworks, plug-ins and QML modules that the application needs
# into its bundle, and checks that all of them find each other there.
#
# usage: bundle-qt.sh [--dry-run] APPLICATION
#   MACDEPLOYQT   the tool of the Qt that the build used (macdeployqt)

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

take_arguments 1 "$@"
application=$operand
macdeployqt=${MACDEPLOYQT:-macdeployqt}
screens=$(cd "$(dirname "$0")/../../ui" && pwd)

need_application "$application"
need "$macdeployqt" "put the bin folder of Qt into PATH, or set MACDEPLOYQT"
need otool "install the command line tools (xcode-select --install)"

rpaths_of() {
  otool -l "$1" 2>/dev/null |
    sed -n '/cmd LC_RPATH/,/path /s/^ *path \(.*\) (offset [0-9]*)$/\1/p' | sort -u
}

libraries_of() {
  otool -L "$1" 2>/dev/null | sed -n 's/^[[:space:]]\{1,\}\(.*\) (compat.*/\1/p' | sort -u
}

# is_inside PATH FILE: whether the path, named in the file, leads to one of the bundle.
is_inside() {
  case $1 in
    @loader_path/*) place=$(dirname "$2")/${1#@loader_path/} ;;
    @executable_path/*) place=$contents/MacOS/${1#@executable_path/} ;;
    *) return 1 ;;
  esac
  folder=$(cd "$(dirname "$place")" 2>/dev/null && pwd -P) || return 1
  case $folder/ in "$contents"/*) [ -e "$place" ] ;; *) return 1 ;; esac
}

# A line for each thing that is amiss. The program's own rpaths hold for all that it loads.
problems_of() {
  rpaths_of "$1" | grep -v '^@' | sed "s|^|$1 looks for libraries in |"
  libraries_of "$1" | while read -r library; do
    case $library in
      /System/Library/* | /usr/lib/*) continue ;;
      @rpath/*)
        { rpaths_of "$1" | sed 's/$/\/1/'; rpaths_of "$program" | sed 's/$/\/2/'; } |
          {
            while read -r rpath; do
              case $rpath in */1) holder=$1 ;; *) holder=$program ;; esac
              is_inside "${rpath%/?}/${library#@rpath/}" "$holder" && exit
            done
            echo "$1 loads $library, which is not in the bundle"
          }
        ;;
      *) is_inside "$library" "$1" || echo "$1 loads $library" ;;
    esac
  done
}

# It signs only if it is told to; signing comes later, inside out: sign.sh.
run "$macdeployqt" "$application" "-qmldir=$screens" -always-overwrite

if ! $dry_run; then
  contents=$(cd "$application/Contents" && pwd -P)
  program=$contents/MacOS/$(executable_of "$application")
  problems=$(find "$contents" -type f \( -perm -u+x -o -name '*.dylib' \) |
    while read -r file; do problems_of "$file"; done)
  [ -z "$problems" ] || {
    printf '%s\n' "$problems" >&2
    fail "the bundle is not complete"
  }
fi
