// The text of a log, and what it is made of.

#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

/// A text that only grows. It lies in segments, so that no length of it makes an
/// append move what is there already.
class LogText {
 public:
  /// Returns the text where it lies from now on; it is there as long as the log.
  std::string_view append(std::string text);
  std::size_t size() const { return size_; }
  /// A copy of the text from this offset on, which is at most its size.
  std::string from(std::size_t offset) const;

 private:
  std::deque<std::string> segments_;
  std::size_t size_ = 0;
};

/// Whether the bytes are UTF-8.
bool isUtf8(std::string_view bytes);
