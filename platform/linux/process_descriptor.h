// A process as a descriptor, which can be read once the process has ended.

#pragma once

#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"

namespace platform::linux_ {

/// None on failure, with errno set. By number: the header of the C library cannot be
/// used from C++ in glibc 2.36.
inline Descriptor processDescriptor(pid_t process) {
  return Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

}  // namespace platform::linux_
