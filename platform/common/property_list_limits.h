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
  /// Takes a value below this many others, with a text of this size. Whether the
  /// list is within the limits up to here.
  bool take(std::size_t depth, std::size_t textSize = 0) {
    constexpr std::size_t kDepthLimit = 128;
    isExceeded_ = isExceeded_ || depth > kDepthLimit || textSize >= left_;
    if (!isExceeded_) left_ -= 1 + textSize;
    return !isExceeded_;
  }

  bool isExceeded() const { return isExceeded_; }

 private:
  /// Values, and the size of their texts.
  std::size_t left_ = kPropertyListSizeLimit;
  bool isExceeded_ = false;
};

}  // namespace platform
