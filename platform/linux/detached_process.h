// Programs that outlive this one.

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace platform::linux_ {

/// Starts a program in a session of its own, without standard streams, so that
/// whoever reads ours sees them end. Whether it has started. Main thread.
bool startDetached(const std::filesystem::path& program, const std::vector<std::string>& arguments);

}  // namespace platform::linux_
