// The running bundle. It is found from where the program really lies, so a
// moved or copied bundle works.

#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/property_list.h"

namespace platform {

/// Path of the resource "name.type"; absent if the bundle holds none. A copied
/// bundle answers for what it holds now.
std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type);

/// The bundle folder itself, absolute and without a trailing slash.
std::filesystem::path bundleLocation();

/// A value of the bundle's information dictionary; absent if the key is missing
/// or there is no readable dictionary.
std::optional<PropertyListValue> bundleInfoValue(const std::string& key);

}  // namespace platform
