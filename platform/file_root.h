// Where things lie on disk. Any thread.

#pragma once

#include <filesystem>

namespace platform {

/// The place on disk of an absolute path of the product ("/Library/…",
/// "/Applications/…", "/tmp/…"): the path itself unless the program was started
/// on another root.
std::filesystem::path onDisk(const std::filesystem::path& path);

/// The user's folder "Library": preferences, application support. It need not exist.
std::filesystem::path userLibrary();

}  // namespace platform
