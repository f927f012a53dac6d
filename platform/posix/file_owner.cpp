#include "platform/file_owner.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include <array>

namespace platform {

std::optional<FileOwner> fileOwner(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
  FileOwner owner{std::to_string(status.st_uid), std::to_string(status.st_gid), status.st_uid == 0};
  std::array<char, 16 * 1024> buffer{};
  passwd user{};
  passwd* foundUser = nullptr;
  if (::getpwuid_r(status.st_uid, &user, buffer.data(), buffer.size(), &foundUser) == 0 &&
      foundUser)
    owner.user = foundUser->pw_name;
  group members{};
  group* foundGroup = nullptr;
  if (::getgrgid_r(status.st_gid, &members, buffer.data(), buffer.size(), &foundGroup) == 0 &&
      foundGroup)
    owner.group = foundGroup->gr_name;
  return owner;
}

}  // namespace platform
