#!/usr/bin/env bash
# Makes the whole application for macOS on Linux, looks whether it can start there, and
# packs it. See docs/macos.md.
#
#   build/macos/Orvane Installer.app     for both architectures, with Qt inside
#   build/macos/OrvaneInstaller.zip

set -euo pipefail
cd "$(dirname "$0")/.."
readonly app='build/macos/Orvane Installer.app'
readonly archive=build/macos/OrvaneInstaller.zip
readonly scanner=/usr/lib/qt6/libexec/qmlimportscanner

start=$SECONDS
tools/macos/build.sh orvane-installer orvane-install
{ read -r tools && read -r qt; } < <(tools/macos/get.sh)
lipo=$(command -v llvm-lipo-14 || command -v llvm-lipo)
export PYTHONPATH=$tools PYTHONDONTWRITEBYTECODE=1

rm -rf "$app"
cp -R "build/macos/arm64/Orvane Installer.app" "$app"
for program in "$app"/Contents/MacOS/*; do
  "$lipo" -create build/macos/{arm64,x86_64}/"${program#build/macos/}" -output "$program"
done
python3 tools/macos/bundle.py "$app" "$qt" ui "$scanner"
if command -v rcodesign >/dev/null; then
  SIGN_IDENTITY=- sh packaging/macos/sign.sh "$app" >build/macos/sign.log 2>&1 || {
    tail -n 5 build/macos/sign.log >&2
    exit 1
  }
else
  echo "rcodesign is not here, so the application is not signed as a whole; docs/macos.md says how to get it"
fi
sh packaging/make_zip.sh "$app" "$PWD/$archive"
python3 tools/macos/verify.py "$app" "$tools/ziglang/lib/libc/darwin/libSystem.tbd" "$archive"
echo "result: $app ($(du -sh "$app" | cut -f 1)), $archive ($(du -h "$archive" | cut -f 1))," \
  "in $((SECONDS - start)) s"
