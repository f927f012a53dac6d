#include "platform/accounts.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/file_root.h"

namespace platform {

std::string ownerAndGroup(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  const bool standsForRoot = onDisk("/") != "/" && status.st_uid == ::geteuid();
  const passwd* const user = ::getpwuid(standsForRoot ? 0 : status.st_uid);
  const std::string owner = user ? user->pw_name : std::to_string(status.st_uid);
  const group* const members = ::getgrgid(status.st_gid);
  return owner + ":" + (members ? members->gr_name : std::to_string(status.st_gid));
}

bool isAdministrator() {
  if (::geteuid() == 0) return true;
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
  const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
  groups.resize(static_cast<std::size_t>(std::max(count, 0)));
  return std::any_of(groups.begin(), groups.end(), [](gid_t id) {
    const group* const members = ::getgrgid(id);
    const std::string_view name = members ? members->gr_name : "";
    // The first on macOS, the others on Linux.
    return name == "admin" || name == "sudo" || name == "wheel";
  });
}

}  // namespace platform
