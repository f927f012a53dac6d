// The files of an installation's log. They lie in a folder that everybody may
// write, so anything may have been put in their place. A log is a regular file with
// one name that belongs to this user or to root; a link is never one, wherever it leads.
// Nothing else is written, and a log that cannot be written stops nothing. Any
// thread; no call blocks.

#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Empties the log, or creates it if there is none. A failure is ignored.
void emptyLogFile(const std::filesystem::path& path);

/// Appends one entry to the log, and creates the log if there is none. A failure
/// is ignored.
void appendToLogFile(const std::filesystem::path& path, std::string_view entry);

/// Whether there is such a log.
bool isOwnLogFile(const std::filesystem::path& path);

struct LogEnd {
  /// The last 64 KiB at most.
  std::string text;
  std::chrono::seconds age;
};
/// What such a log ends with; absent if there is none, or it cannot be read.
std::optional<LogEnd> readEndOfLogFile(const std::filesystem::path& path);

}  // namespace platform
