#include "platform/user_library.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::filesystem::path userLibrary() {
  return test::active->root / "user/Library";
}

}  // namespace platform
