#include "platform/posix/group_membership.h"

#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <vector>

namespace platform::posix {

bool isInGroup(const char* name) {
  std::array<char, 16 * 1024> buffer{};
  group members{};
  group* found = nullptr;
  if (::getgrnam_r(name, &members, buffer.data(), buffer.size(), &found) != 0 || !found)
    return false;
  if (::getegid() == found->gr_gid) return true;
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
  const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
  groups.resize(static_cast<std::size_t>(std::max(count, 0)));
  return std::find(groups.begin(), groups.end(), found->gr_gid) != groups.end();
}

}  // namespace platform::posix
