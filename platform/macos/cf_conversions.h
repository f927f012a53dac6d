// Standard C++ values to Core Foundation objects and back. Any thread.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/macos/cf_ref.h"
#include "platform/property_list.h"

namespace platform {

/// Never null: what is not UTF-8 in the text is replaced.
CfRef<CFStringRef> toCfString(std::string_view text);
/// As UTF-8. Text ends at a lone surrogate.
std::string toString(CFStringRef text);

/// The file URL of a path; null if the path is empty.
CfRef<CFURLRef> toCfUrl(const std::filesystem::path& path, bool isDirectory);
/// The path of a file URL; absent if it is longer than a path may be.
std::optional<std::filesystem::path> toPath(CFURLRef url);

/// Never null.
CfRef<CFPropertyListRef> toCfPropertyList(const PropertyListValue& value);
/// Absent for null and, if `isLimited`, for what is beyond the limits of
/// property_list_limits.h.
std::optional<PropertyListValue> toPropertyListValue(CFTypeRef object, bool isLimited = false);

}  // namespace platform
