// Notes that the activation has succeeded for this user.

#pragma once

#include <filesystem>

#include "platform/user_library.h"

/// The file that notes it, by being there.
inline std::filesystem::path activationStamp() {
  return platform::userLibrary() / "Application Support" / "Orvane Installer" / "activated";
}
