#include "platform/file_root.h"

namespace platform {

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return path;
}

}  // namespace platform
