#!/bin/sh
# Whether what the documents name is there:
#   every path and identifier in backticks in docs/architecture.md, and in a row of a
#     table that names files, every identifier in one of them;
#   every relative link of every document;
#   every target of "make";
#   every package of tools/setup.sh in docs/third-party.md;
#   the version of CMakeLists.txt at the top of CHANGELOG.md.
# Prints a line for each that is not, and ends with 1 then.
set -eu
cd "$(dirname "$0")/.."
LC_ALL=C.UTF-8 # headings may be Chinese
export LC_ALL
readonly architecture=docs/architecture.md

# The files of the tree that match, also those that are not yet committed.
files() { git -c core.quotePath=false ls-files --cached --others --exclude-standard -- "$@"; }
documents() { files '*.md'; }

# A line for each name: LINE|path or word|NAME|the paths of its row.
names() {
  awk '
    function is_path(name) { return name ~ /\/|\.(cpp|h|in|md|mm|qml|sh|txt)$/ }
    /^```/ { fenced = !fenced; next }
    # In the drawing: the statuses, and the operations that move them.
    fenced && /-->/ {
      colon = index($0 " : ", " : ")
      count = split(substr($0, 1, colon), words, /[^A-Za-z]+/)
      for (i = 1; i <= count; ++i) if (words[i] != "") print NR "|word|" words[i] "|"
      for (rest = substr($0, colon); match(rest, /[A-Za-z]+\(\)/); rest = substr(rest, RSTART + RLENGTH))
        print NR "|word|" substr(rest, RSTART, RLENGTH) "|"
    }
    fenced { next }
    {
      count = split($0, spans, "`")
      row = ""
      if (/^\|/) for (i = 2; i <= count; i += 2) if (is_path(spans[i])) row = row " " spans[i]
      for (i = 2; i <= count; i += 2)
        print NR (is_path(spans[i]) ? "|path|" : "|word|") spans[i] "|" row
    }' "$architecture"
}

# is_word_in WORD FILE…: also if it is the name of one of them
is_word_in() {
  word=$1
  shift
  git grep --untracked -qwF -e "$word" -- "$@" ':!*.md' ':!tools/check-docs.sh' ||
    files "$@" | grep -qE "(^|/)$word(\.[a-z]+)?\$"
}

check_names() {
  [ -n "$(names)" ] || echo "$architecture: no names were found in it"
  names | while IFS='|' read -r line kind name row; do
    if [ "$kind" = path ]; then
      [ -n "$(files "$name")" ] || echo "$architecture:$line: there is no $name"
      continue
    fi
    # "State::set()" is two words, "--root DIR" too, "0.25" is one.
    for word in $(printf '%s\n' "$name" | sed 's/()//g; s/::/ /g; s/\([A-Za-z]\)\./\1 /g'); do
      # shellcheck disable=SC2086 # no path of the code has a space
      is_word_in "$word" ${row:-.} ||
        echo "$architecture:$line: $word is not in ${row:-the tree}"
    done
  done
}

# The headings of a document, as links name them.
anchors() {
  sed -n 's/^##* //p' "$1" | tr '[:upper:]' '[:lower:]' | sed -E 's/[^[:alnum:] _-]//g; s/ /-/g'
}

check_links() {
  documents | while read -r document; do
    grep -oE '\]\([^)]+\)|(src|href)="[^"]+"' "$document" |
      sed -E 's/^(\]\(|[a-z]+=")//; s/[)"]$//; s/ .*//; s/%20/ /g' |
      while read -r target; do
        case $target in [a-z]*:*) continue ;; esac
        path=${target%%#*}
        path=${path:+$(dirname "$document")/$path}
        path=${path:-$document}
        if ! [ -e "$path" ]; then
          echo "$document: a link leads nowhere: $target"
        elif [ "$target" != "${target#*#}" ] && ! anchors "$path" | grep -qxF -- "${target#*#}"; then
          echo "$document: a link names no heading: $target"
        fi
      done
  done
}

check_targets() {
  documents | while read -r document; do
    grep -oE '(^    |`)make [a-z][a-z-]*' "$document" | sed 's/.*make //' | sort -u |
      while read -r target; do
        grep -qE "^([^:=#]* )?$target( [^:=]*)?:" Makefile ||
          echo "$document: there is no 'make $target'"
      done
  done
}

check_packages() {
  packages=$(sed -n "/^packages='/,/^'/p" tools/setup.sh | sed "s/^packages=//; s/'//")
  [ -n "$packages" ] || echo "tools/setup.sh: its list of packages was not found"
  for package in $packages; do
    grep -qwF -- "$package" docs/third-party.md ||
      echo "docs/third-party.md: nothing about $package of tools/setup.sh"
  done
}

check_version() {
  version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
  newest=$(sed -n 's/^## \[\([0-9.]*\)\].*/\1/p' CHANGELOG.md | head -n 1)
  [ "$version" = "$newest" ] ||
    echo "CHANGELOG.md: its newest version is $newest, CMakeLists.txt has $version"
}

problems=$(check_names && check_links && check_targets && check_packages && check_version)
[ -z "$problems" ] || {
  printf '%s\n' "$problems" >&2
  exit 1
}
