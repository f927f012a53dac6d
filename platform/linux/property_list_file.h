// Property lists as bytes and as files that several processes share. Any thread.

#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/property_list.h"

namespace platform::linux_ {

enum class PropertyListFormat { xml, binary };

/// The value as the bytes of a file. XML has dates in whole seconds. A
/// dictionary with foreign keys becomes an empty one; a date beyond what
/// libplist can carry, 1932 to 2069, becomes the nearest that it can.
std::string encodePropertyList(const PropertyListValue& value, PropertyListFormat format);

/// The value in XML or binary bytes; absent if they are damaged. An unsigned
/// integer above the signed range comes as the negative one of the same bits.
std::optional<PropertyListValue> decodePropertyList(std::string_view bytes);

/// The value under `key`; null if there is none. The dictionary owns it.
const PropertyListValue* valueIn(const PropertyListDictionary& dictionary, const std::string& key);

/// The string under `key`; absent if there is none or it is another kind.
std::optional<std::string> textIn(const PropertyListDictionary& dictionary, const std::string& key);

/// The strings of the array under `key`, in its order; other kinds are skipped.
std::vector<std::string> textsIn(const PropertyListDictionary& dictionary, const std::string& key);

/// Changes the dictionary in a file, one process at a time, and replaces the
/// file in one step; as XML unless XML cannot carry the values. A missing file
/// counts as empty, a damaged one is kept under another name and reported on
/// standard error. `change` must not edit another file of the same folder. An
/// unchanged dictionary is not written. Whether the file now holds the result.
bool editPropertyListFile(const std::filesystem::path& file,
                          const std::function<void(PropertyListDictionary&)>& change);

}  // namespace platform::linux_
