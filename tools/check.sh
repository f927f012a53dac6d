#!/bin/sh
# Everything that can be said of the sources without running the installer, and
# the unit tests under the address and undefined-behaviour sanitizers. What went
# wrong is said at the end; the other checks run all the same.
set -u
cd "$(dirname "$0")/.." || exit 1
jobs=$(nproc)
failed=

check() { # check NAME COMMAND...
  name=$1
  shift
  echo "== $name"
  "$@" || failed="$failed $name"
}

format() {
  git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format --dry-run --Werror
}

tidy() {
  git ls-files '*.cpp' ':!platform/macos' ':!tests' ':!bench' |
    xargs -P "$jobs" -n 1 tools/tidy.sh
}

shell_scripts() {
  git ls-files '*.sh' .ci/run | xargs shellcheck --external-sources --source-path=SCRIPTDIR \
    --severity=warning
}

# A component may use the identifiers of the file around it; this version of the
# tool does not know that.
qml() {
  git ls-files '*.qml' | xargs /usr/lib/qt6/bin/qmllint --unqualified disable \
    -I build/release/ui -I build/release/workbench
}

sanitized() {
  cmake --preset asan --log-level=WARNING >/dev/null && cmake --build --preset asan --target unit_tests &&
    ctest --preset asan -L unit -j "$jobs"
}

tools/setup.sh --check || exit 1
{ cmake --preset release --log-level=WARNING >/dev/null && cmake --build --preset release; } || exit 1
check format format
check shellcheck shell_scripts
check qmllint qml
check sanitizers sanitized
check clang-tidy tidy
[ -z "$failed" ] || { echo "failed:$failed"; exit 1; }
