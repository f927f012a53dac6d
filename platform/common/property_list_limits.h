// How much of a property list is taken in. A few bytes of a binary list can stand
// for any number of values, as its objects may refer to each other.

#pragma once

#include <cstddef>

namespace platform {

/// Of a file, in bytes. Far above what preferences and information dictionaries hold.
inline constexpr std::size_t kPropertyListSizeLimit = std::size_t{256} * 1024;

/// Counts what one list takes up while it is read.
class PropertyListBudget {
 public:
  /// Takes a value below this many others, with this many bytes of text. Whether
  /// the list is still within the limits.
  bool take(std::size_t depth, std::size_t textSize = 0) {
    constexpr std::size_t kDepthLimit = 128;
    constexpr std::size_t kLimit = kPropertyListSizeLimit;
    const std::size_t left = kLimit - used_;
    used_ = depth <= kDepthLimit && textSize < left ? used_ + 1 + textSize : kLimit;
    return used_ < kLimit;
  }

 private:
  /// Values, and bytes of their texts.
  std::size_t used_ = 0;
};

}  // namespace platform
