#pragma once

#include <optional>
#include <string_view>

#include "platform/property_list.h"

namespace platform::linux_ {

/// The value in the bytes of a binary list; absent if they are damaged or stand for
/// more than property_list_limits.h allows. Opaque values come empty: they cannot be
/// written. Any thread.
std::optional<PropertyListValue> decodeBinary(std::string_view bytes);

}  // namespace platform::linux_
