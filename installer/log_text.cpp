#include "installer/log_text.h"

#include <utf8.h>

#include <algorithm>
#include <utility>

std::string_view LogText::append(std::string text) {
  // A text of this size is a segment of its own, so it is not copied. Smaller ones
  // share a segment.
  constexpr std::size_t kSegmentSize = 16UL * 1024;
  const std::size_t size = text.size();
  size_ += size;
  if (segments_.empty() || segments_.back().capacity() - segments_.back().size() < size) {
    if (size >= kSegmentSize) return segments_.emplace_back(std::move(text));
    segments_.emplace_back().reserve(kSegmentSize);
  }
  segments_.back().append(text);
  return std::string_view(segments_.back()).substr(segments_.back().size() - size);
}

std::string LogText::from(std::size_t offset) const {
  std::string text;
  text.reserve(size_ - offset);
  for (const std::string& segment : segments_) {
    text.append(segment, std::min(offset, segment.size()));
    offset -= std::min(offset, segment.size());
  }
  return text;
}

bool isUtf8(std::string_view bytes) {
  constexpr std::size_t kBlockSize = 512;
  while (!bytes.empty()) {
    std::string_view part = bytes.substr(0, kBlockSize);
    // Logs are ASCII for the most part, which this loop sees many bytes at a time.
    unsigned char all = 0;
    for (const char byte : part) all |= static_cast<unsigned char>(byte);
    if (all >= 0x80) {
      // No character goes across the end of a line.
      part = bytes.substr(0, bytes.find('\n', part.size()));
      if (!utf8::is_valid(part.begin(), part.end())) return false;
    }
    bytes.remove_prefix(part.size());
  }
  return true;
}
