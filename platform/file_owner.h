// To whom a file belongs.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

struct FileOwner {
  /// Names; numbers as text where there is no name.
  std::string user;
  std::string group;
  bool isSuperuser = false;
  bool operator==(const FileOwner&) const = default;
};

/// The owner of what lies at this path, of a link itself; absent if nothing does
/// or it cannot be asked. Any thread.
std::optional<FileOwner> fileOwner(const std::filesystem::path& path);

}  // namespace platform
