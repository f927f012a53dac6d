#include "platform/admin_rights.h"

#include <fcntl.h>
#include <unistd.h>

#include <QStandardPaths>

#include "platform/bundle.h"
#include "platform/linux/environment.h"
#include "platform/linux/file_root_linux.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/group_membership.h"

namespace platform {

namespace {

/// Whether there is an askpass program, and for the bundled one a place to ask in.
bool canAskForPassword() {
  if (const char* own = linux_::variable("SUDO_ASKPASS")) return ::access(own, X_OK) == 0;
  if (::access((bundleLocation() / "Contents/Helpers/askpass").c_str(), X_OK) != 0) return false;
  return linux_::hasDisplay() || Descriptor(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY));
}

}  // namespace

AdminRights adminRights() {
  // Below a root of its own the askpass program alone decides.
  if (linux_::fileRoot())
    return canAskForPassword() ? AdminRights::askable : AdminRights::unavailable;
  if (::geteuid() == 0) return AdminRights::held;
  if (!canAskForPassword() || QStandardPaths::findExecutable("sudo").isEmpty())
    return AdminRights::unavailable;
  for (const char* group : {"sudo", "wheel", "admin"})
    if (posix::isInGroup(group)) return AdminRights::askable;
  return AdminRights::ofAnother;  // sudo's own configuration may still name the user
}

}  // namespace platform
