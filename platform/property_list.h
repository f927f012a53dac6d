// Property-list values, as preferences and information dictionaries hold them.

#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform {

class PropertyListValue;

using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue>;

/// A dictionary with a key that is not a string. Its content is not carried.
struct ForeignKeyDictionary {
  bool operator==(const ForeignKeyDictionary&) const = default;
};

using PropertyListData = std::vector<std::byte>;

/// Seconds since 2001-01-01 00:00:00 UTC.
struct PropertyListDate {
  double secondsSince2001 = 0.0;
  bool operator==(const PropertyListDate&) const = default;
};

/// One value of a property list. A boolean is not a number.
class PropertyListValue : public std::variant<bool, std::int64_t, double, std::string,
                                              PropertyListDate, PropertyListData, PropertyListArray,
                                              PropertyListDictionary, ForeignKeyDictionary> {
 public:
  using variant::variant;
  PropertyListValue(const char* text) : variant(std::string(text)) {}

  /// The value if it is of this type, else null.
  template <class T>
  const T* as() const {
    return std::get_if<T>(static_cast<const variant*>(this));
  }
};

/// Reads an XML or binary property list; absent if the file is missing,
/// unreadable, damaged, above 4 MiB, no regular file, or has another kind of value
/// at its root. Any thread.
std::optional<PropertyListDictionary> readPropertyListDictionary(const std::filesystem::path& file);

}  // namespace platform
