// To whom a file belongs, and what this user may do. Main thread.

#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// Owner and group of what lies at this path, of a link itself: "root:wheel". A
/// number stands where there is no name; empty if nothing lies there or it cannot
/// be asked. Below a root of its own this user stands for the owner root.
std::string ownerAndGroup(const std::filesystem::path& path);

/// Whether this user can answer the system's password prompt: root, or a member of
/// a group of administrators.
bool isAdministrator();

}  // namespace platform
