// What an installation puts on the disk.

#pragma once

#include <array>
#include <filesystem>

#include "inputsource/tessal_installer.h"

/// The bundles that the installation script knows, without the root.
inline std::array<std::filesystem::path, 3> installedBundles() {
  return {TessalInstaller::appDir(), "/Applications/Sondrel.app", "/Applications/Cogwen.app"};
}
