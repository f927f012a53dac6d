// Property-list files that several processes share. Any thread.

#pragma once

#include <filesystem>
#include <functional>

#include "platform/property_list.h"

namespace platform::linux_ {

/// Changes the dictionary in a file, one process at a time, and replaces the file
/// in one step. A missing file counts as empty; an unchanged dictionary is not
/// written.
///
/// Whether the file now holds the result. False leaves the file as it was, and says
/// why on standard error: the file is damaged, it cannot be read or written, a value
/// cannot be written, or another process holds the lock for more than five seconds.
[[nodiscard]] bool editPropertyListFile(const std::filesystem::path& file,
                                        const std::function<void(PropertyListDictionary&)>& change);

}  // namespace platform::linux_
