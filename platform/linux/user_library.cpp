#include "platform/user_library.h"

#include "platform/linux/file_root_linux.h"

namespace platform {

std::filesystem::path userLibrary() {
  return linux_::userStore() / "Library";
}

}  // namespace platform
