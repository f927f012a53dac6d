// Property lists as bytes. Any thread.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace platform::linux_ {

enum class PropertyListFormat { xml, binary };

/// The value as the bytes of a file; absent if it is beyond the limits of
/// property_list_limits.h. XML has dates in whole seconds. A dictionary with foreign keys becomes
/// an empty one; a date beyond what libplist can carry, 1932 to 2069, becomes the nearest that it
/// can.
std::optional<std::string> encodePropertyList(const PropertyListValue& value,
                                              PropertyListFormat format);

/// The value in XML or binary bytes; absent if they are damaged or beyond the
/// limits of property_list_limits.h. An unsigned integer above the signed range
/// comes as the negative one of the same bits.
std::optional<PropertyListValue> decodePropertyList(std::string_view bytes);

}  // namespace platform::linux_
