#include "platform/admin_rights.h"

#include <unistd.h>

#include "platform/posix/group_membership.h"

namespace platform {

AdminRights adminRights() {
  if (::geteuid() == 0) return AdminRights::held;
  return posix::isInGroup("admin") ? AdminRights::askable : AdminRights::ofAnother;
}

}  // namespace platform
