// The text of a log, and what it is made of.

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// A text that only grows. It lies in segments, so that no length of it makes an
/// append move what is there already.
class LogText {
 public:
  void append(std::string_view text);
  std::size_t size() const;
  /// A copy of the text from this offset on, which is at most its size.
  std::string from(std::size_t offset) const;

 private:
  /// All but the last one are full.
  std::vector<std::string> segments_;
};

/// Whether the bytes are UTF-8.
bool isUtf8(std::string_view bytes);
