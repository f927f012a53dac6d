// The groups of the user of this process.

#pragma once

namespace platform::posix {

/// Whether this process is in the group of this name; false if there is none.
/// Any thread.
bool isInGroup(const char* name);

}  // namespace platform::posix
