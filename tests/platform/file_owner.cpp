#include "platform/file_owner.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<FileOwner> fileOwner(const std::filesystem::path& path) {
  if (!std::filesystem::exists(std::filesystem::symlink_status(path))) return std::nullopt;
  return test::valueIn(test::active->owners, path).value_or(FileOwner{"root", "wheel", true});
}

}  // namespace platform
