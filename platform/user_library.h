// The user's own files of applications.

#pragma once

#include <filesystem>

namespace platform {

/// The user's folder "Library": preferences, application support. It need not
/// exist. Any thread.
std::filesystem::path userLibrary();

}  // namespace platform
