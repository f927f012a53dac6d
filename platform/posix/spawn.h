// Starting a program.

#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace platform {

/// Variables that a child gets beside those of this process; one of the same
/// name is replaced.
using Environment = std::map<std::string, std::string>;

/// A standard stream of a child that is not one of our descriptors.
inline constexpr int kInherited = -1;
inline constexpr int kNullDevice = -2;

struct SpawnOptions {
  Environment environment;
  /// Each a descriptor, kInherited or kNullDevice.
  int standardInput = kInherited;
  int standardOutput = kInherited;
  int standardError = kInherited;
  /// A new group in our session, or a new session.
  bool ownGroup = false;
  bool ownSession = false;
};

/// Starts a program, looked for in PATH unless its name holds a slash. It inherits
/// no signal mask and no ignored SIGPIPE. 0, or the error number.
int spawn(pid_t& child, const std::string& program, const std::vector<std::string>& arguments,
          const SpawnOptions& options);

}  // namespace platform
