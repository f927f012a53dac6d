#include "platform/file_root.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

namespace platform {

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return path;
}

std::filesystem::path userLibrary() {
  std::array<char, 16 * 1024> buffer{};
  passwd user{};
  passwd* found = nullptr;
  ::getpwuid_r(::geteuid(), &user, buffer.data(), buffer.size(), &found);
  return std::filesystem::path(found ? found->pw_dir : "/var/empty") / "Library";
}

}  // namespace platform
