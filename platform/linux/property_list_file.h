// Property-list files that several processes share. Any thread.

#pragma once

#include <filesystem>
#include <functional>

#include "platform/property_list.h"

namespace platform::linux_ {

/// Changes the dictionary in a file, one process at a time, and replaces the
/// file in one step; as XML unless XML cannot carry the values. A missing file
/// counts as empty, a damaged one is kept under another name and reported on
/// standard error. `change` must not edit another file of the same folder. An
/// unchanged dictionary is not written.
///
/// Whether the file now holds the result. False leaves the file as it was: it
/// cannot be read or written, the disk is full, the values cannot be read back
/// from a file, or another process holds the folder's lock for more than half a
/// second.
[[nodiscard]] bool editPropertyListFile(const std::filesystem::path& file,
                                        const std::function<void(PropertyListDictionary&)>& change);

}  // namespace platform::linux_
