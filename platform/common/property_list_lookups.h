// Look-ups in a dictionary of a property list.

#pragma once

#include <optional>
#include <string>

#include "platform/property_list.h"

namespace platform {

/// The value under `key`; null if there is none. The dictionary owns it.
inline const PropertyListValue* valueIn(const PropertyListDictionary& dictionary,
                                        const std::string& key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() ? &found->second : nullptr;
}

/// The string under `key`; absent if there is none or it is another kind.
inline std::optional<std::string> textIn(const PropertyListDictionary& dictionary,
                                         const std::string& key) {
  const auto* value = valueIn(dictionary, key);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

/// The dictionary under `key`; null if there is none or it is another kind, and if
/// `dictionary` is null. The outer one owns it.
inline const PropertyListDictionary* dictionaryIn(const PropertyListDictionary* dictionary,
                                                  const std::string& key) {
  const auto* value = dictionary ? valueIn(*dictionary, key) : nullptr;
  return value ? value->as<PropertyListDictionary>() : nullptr;
}

}  // namespace platform
