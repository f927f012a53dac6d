// Property-list values, as preferences and information dictionaries hold them.

#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace platform {

class PropertyListValue;

using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue>;

/// A value as the platform holds it.
struct OpaqueObject;

/// A value that the installer never edits: a number, a date, data, a dictionary with a key
/// that is not a string. It is written back as it came.
struct OpaqueValue {
  std::shared_ptr<const OpaqueObject> object;
  bool isDictionary = false;
};
/// Whether they hold the same value.
bool operator==(const OpaqueValue& left, const OpaqueValue& right);

/// One value of a property list. A number is not a boolean.
class PropertyListValue : public std::variant<bool, std::string, PropertyListArray,
                                              PropertyListDictionary, OpaqueValue> {
 public:
  using variant::variant;
  PropertyListValue(const char* text) : variant(std::string(text)) {}

  /// The value if it is of this type, else null.
  template <class T>
  const T* as() const {
    return std::get_if<T>(static_cast<const variant*>(this));
  }
};

/// Reads a property list in XML, on macOS also a binary one; absent if the file is missing,
/// unreadable, damaged, beyond the limits of common/property_list_limits.h, no
/// regular file, or has another kind of value at its root. Any thread.
std::optional<PropertyListDictionary> readPropertyListDictionary(const std::filesystem::path& file);

}  // namespace platform
