// Standard C++ values to Core Foundation objects and back. Any thread.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/macos/cf_ref.h"
#include "platform/property_list.h"

namespace platform {

/// Never null: text that is not UTF-8 is read as Latin-1.
CfRef<CFStringRef> toCfString(std::string_view text);
/// As UTF-8; a lone surrogate becomes "?".
std::string toString(CFStringRef text);

/// The file URL of a path; null if the path is empty.
CfRef<CFURLRef> toCfUrl(const std::filesystem::path& path, bool isDirectory);
/// The path of a file URL; absent for any other.
std::optional<std::filesystem::path> toPath(CFURLRef url);

/// Never null. A ForeignKeyDictionary becomes an empty dictionary.
CfRef<CFPropertyListRef> toCfPropertyList(const PropertyListValue& value);
/// Absent for null and for an object that no property list holds. Such an
/// object inside an array or a dictionary is left out.
std::optional<PropertyListValue> toPropertyListValue(CFTypeRef object);

}  // namespace platform
