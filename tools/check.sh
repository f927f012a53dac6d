#!/bin/sh
# Everything that can be said of the sources without running the installer, and
# the unit tests under the address and undefined-behaviour sanitizers. What went
# wrong is said at the end; the other checks run all the same.
set -u
cd "$(dirname "$0")/.." || exit 1
failed=

check() {
  echo "== $1"
  "$1" || failed="$failed $1"
}
format() { git ls-files '*.cpp' '*.h' '*.mm' ':!tools/macos-sdk' | xargs clang-format --dry-run --Werror; }
shell_scripts() {
  git ls-files '*.sh' .ci/run | xargs shellcheck --external-sources --source-path=SCRIPTDIR --severity=warning
}
# A component may use the identifiers of the file around it; this version of the
# tool does not know that.
qml() {
  git ls-files '*.qml' | xargs /usr/lib/qt6/bin/qmllint --unqualified disable -I build/release/ui -I build/release/workbench
}
sanitizers() {
  cmake --preset asan --log-level=WARNING >/dev/null && cmake --build --preset asan --target unit_tests &&
    ctest --preset asan -L unit -j "$(nproc)"
}
tidy() {
  git ls-files '*.cpp' ':!platform/macos' ':!tests' ':!bench' |
    xargs -P "$(nproc)" -n 1 clang-tidy -p build/release --quiet 2>/dev/null
}

make || exit 1
for name in format shell_scripts qml sanitizers tidy; do check $name; done
[ -z "$failed" ] || { echo "failed:$failed"; exit 1; }
