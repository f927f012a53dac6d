// Files at paths where something else may lie. Nothing here blocks on what is no
// regular file. Any thread.

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/posix/descriptor.h"

namespace platform {

/// Opens an existing regular file with these flags of open(2). None if that
/// fails, with errno set, or if something else lies there.
Descriptor openRegularFile(const std::filesystem::path& path, int flags);

/// What a regular file holds, cut off after `limit` bytes; absent if it cannot be
/// read or something else lies there.
std::optional<std::string> readRegularFile(const std::filesystem::path& path, std::size_t limit);

}  // namespace platform
