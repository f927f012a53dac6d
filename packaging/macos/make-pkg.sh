#!/bin/bash
# Makes an installer package: the input method and its companions at their places and, as a choice, the installer with
# the login entry that asks each user to enable it.
#
# usage: make-pkg.sh [--dry-run] APPLICATION [PACKAGE]
#   INSTALLER_IDENTITY   name or hash of the certificate, "Developer ID Installer: …"; without it nothing is signed

set -eu
# shellcheck source-path=SCRIPTDIR source=common.sh
. "$(dirname "$0")/common.sh"

package=${2:-${application%.app}.pkg}
identity=${INSTALLER_IDENTITY:-}
need pkgbuild "packages are made on macOS only"

staging=${package%.pkg}-package
resources=$application/Contents/Resources
folder=/opt/orvane
agent="$staging/activate/Library/LaunchAgents/com.tessal.installer.Orvane.activate.plist"

# value KEY: a text of the application's dictionary
value() { sed -n "/<key>$1</{n;s/.*<string>\(.*\)<.*/\1/p;}" "$application/Contents/Info.plist"; }

# component NAME VERSION [OPTION…]
component() {
  local name=$1 version=$2
  shift 2
  # Otherwise a bundle goes wherever the Mac has another one with its identifier.
  run pkgbuild --analyze --root "$staging/$name" "$staging/$name.plist"
  run sed -i '' '/BundleIsRelocatable/{n;s/true/false/;}' "$staging/$name.plist"
  run pkgbuild --root "$staging/$name" --component-plist "$staging/$name.plist" --install-location / --ownership recommended \
    --identifier "com.tessal.pkg.Orvane.$name" --version "$version" "$@" "$staging/$name.pkg"
}

run rm -rf "$staging"
run mkdir -p "$staging/bundles/Library/Input Methods"
run mkdir -m 775 "$staging/bundles/Applications" # as the system's, which gets these modes
run ditto -x -k "$resources/Orvane.zip" "$staging/bundles/Library/Input Methods"
for archive in "$resources/Sondrel.zip" "$resources/Cogwen.zip"; do
  [ ! -f "$archive" ] || run ditto -x -k "$archive" "$staging/bundles/Applications"
done
component bundles "$(value OrvanePayloadVersion)" --scripts "$here/scripts"

run mkdir -p "$staging/activate$folder" "$(dirname "$agent")"
run ditto "$application" "$staging/activate$folder/Orvane Installer.app"
run install -m 666 /dev/null "$staging/activate$folder/activate.log"
run install -m 644 "$here/../fleet/roles/orvane/templates/launch_agent.plist.j2" "$agent"
run sed -i '' -e "s,{{ orvane_program | e }},$folder/Orvane Installer.app/Contents/MacOS/orvane-install," \
  -e "s,{{ orvane_log | e }},$folder/activate.log," "$agent"
component activate "$(value CFBundleShortVersionString)"

set --
[ -z "$identity" ] || set -- --sign "$identity"
run productbuild --distribution "$here/distribution.xml" --package-path "$staging" "$@" "$package"
run rm -rf "$staging"
