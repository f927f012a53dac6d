// Where the product's absolute paths lie on disk.

#pragma once

#include <filesystem>

namespace platform {

/// The place on disk of an absolute path of the product ("/Library/…",
/// "/Applications/…", "/tmp/…"): the path itself unless the program was started
/// on another root. Any thread.
std::filesystem::path onDisk(const std::filesystem::path& path);

}  // namespace platform
