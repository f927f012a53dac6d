#include "platform/file_root.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return test::active->root / path.relative_path();
}

std::filesystem::path userLibrary() {
  return test::active->root / "user/Library";
}

}  // namespace platform
