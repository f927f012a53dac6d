#include "platform/file_root.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return test::active->root / path.relative_path();
}

}  // namespace platform
