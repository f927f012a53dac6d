// Typed readers of input-source properties.

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/text_input_sources.h"

/// The property's value if it is a string, else absent.
inline std::optional<std::string> getString(const platform::InputSource& source,
                                            platform::InputSourceProperty key) {
  const auto value = platform::getInputSourceProperty(source, key);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

/// The property's value if it is a boolean, else absent: a number is none.
inline std::optional<bool> getBool(const platform::InputSource& source,
                                   platform::InputSourceProperty key) {
  const auto value = platform::getInputSourceProperty(source, key);
  const auto* flag = value ? value->as<bool>() : nullptr;
  return flag ? std::optional(*flag) : std::nullopt;
}
