#!/usr/bin/env bash
# Makes the whole application for macOS on Linux, and looks at it and at all sources as
# closely as a Mac's tools would. See docs/macos.md.
#
#   tools/macos.sh            build/macos/Orvane Installer.app, build/macos/OrvaneInstaller.zip
#   tools/macos.sh --prove    then shows that a mistake of each kind is caught, and that the
#                             programs come out the same in another folder

set -euo pipefail
cd "$(dirname "$0")/.."
readonly app='build/macos/Orvane Installer.app' archive=build/macos/OrvaneInstaller.zip
readonly cache=${XDG_CACHE_HOME:-$HOME/.cache}/orvane-macos-check
readonly tools=$cache/tools qt=$cache/qt/PySide6/Qt

[[ "$*" == "" || "$*" == --prove ]] || { echo "usage: tools/macos.sh [--prove]" >&2 && exit 64; }
tools/macos/get.sh "$cache"
export ZIG_GLOBAL_CACHE_DIR=$cache/objects ZIG_LOCAL_CACHE_DIR=$cache/objects
export PYTHONPATH=$tools PYTHONDONTWRITEBYTECODE=1
# The times of files would come into the program with its screens.
export SOURCE_DATE_EPOCH=1704067200
# It would take a word of the compiler's name for a source.
unset CMAKE_CXX_COMPILER_LAUNCHER

# build ARCHITECTURE TARGET…: each has a folder of its own.
build() {
  local folder=build/macos/$1
  cmake --log-level=WARNING -S . -B "$folder" -G Ninja -D CMAKE_BUILD_TYPE=Release -D CMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -D CMAKE_TOOLCHAIN_FILE="$PWD/tools/macos/toolchain.cmake" -D ORVANE_ARCHITECTURE="$1" \
    -D ORVANE_MACOS_TOOLS="$tools" -D ORVANE_MACOS_QT="$qt" >/dev/null
  echo "macos: building for $1"
  cmake --build "$folder" --target "${@:2}"
}

# Nothing in the tests goes by the architecture, so one does for them.
build arm64 all
build x86_64 orvane-installer orvane-install
python3 tools/macos/check.py analyse build/macos/arm64

python3 tools/macos/bundle.py "$app" "$qt" ui /usr/lib/qt6/libexec/qmlimportscanner
(cd "$app/Contents/Resources" && sha256sum --check --quiet SHA256SUMS)
if command -v rcodesign >/dev/null; then
  SIGN_IDENTITY=- sh packaging/macos/sign.sh "$app" 2>&1 | tail -n 2
else
  echo "rcodesign is not here, so the application is not signed as a whole; docs/macos.md says how to get it"
fi
sh packaging/make_zip.sh "$app" "$PWD/$archive"
rm -rf build/macos/unpacked && mkdir build/macos/unpacked
bsdtar -xf "$archive" -C build/macos/unpacked
python3 tools/macos/verify.py "build/macos/unpacked/${app##*/}" build/macos/list.json
if [[ "$*" == --prove ]]; then
  python3 tools/macos/check.py prove build/macos/arm64
  # The name of this folder has another length.
  rm -rf build/macos/elsewhere && mkdir build/macos/elsewhere
  tar -c --exclude=./build --exclude=./.git . | tar -x -C build/macos/elsewhere
  for architecture in arm64 x86_64; do
    (cd build/macos/elsewhere && build "$architecture" orvane-installer orvane-install)
    diff -r {,build/macos/elsewhere/}"build/macos/$architecture/${app##*/}/Contents/MacOS"
  done
fi
sha256sum "$archive"
echo "passed: $app ($(du -sh "$app" | cut -f 1)), $archive ($(du -h "$archive" | cut -f 1)), in $SECONDS s"
