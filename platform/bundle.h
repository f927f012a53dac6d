// The running bundle. It is found from where the program really lies, so a
// moved or copied bundle works. Any thread.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

/// Path of the resource "name.type"; absent if the bundle holds none. A copied
/// bundle answers for what it holds now.
std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type);

/// The bundle folder itself, absolute and without a trailing slash.
std::filesystem::path bundleLocation();

/// A string of the bundle's information dictionary; absent if there is none under the
/// key, or no readable dictionary.
std::optional<std::string> bundleInfoText(const std::string& key);

}  // namespace platform
