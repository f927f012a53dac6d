#pragma once

#include <cstdlib>

namespace platform::linux_ {

/// The environment variable's value; null if it is not set or empty.
inline const char* environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value && *value ? value : nullptr;
}

/// Whether this process is told of a display for its windows.
inline bool hasDisplay() {
  return environmentVariable("DISPLAY") || environmentVariable("WAYLAND_DISPLAY");
}

}  // namespace platform::linux_
