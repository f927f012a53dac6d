#include "installer/log_text.h"

#include <utf8.h>

namespace {
constexpr std::size_t kSegmentSize = 256UL * 1024;
}

void LogText::append(std::string_view text) {
  while (!text.empty()) {
    if (segments_.empty() || segments_.back().size() == kSegmentSize)
      segments_.emplace_back().reserve(kSegmentSize);
    std::string& last = segments_.back();
    const std::string_view part = text.substr(0, kSegmentSize - last.size());
    last.append(part);
    text.remove_prefix(part.size());
  }
}

std::size_t LogText::size() const {
  return segments_.empty() ? 0 : (segments_.size() - 1) * kSegmentSize + segments_.back().size();
}

std::string LogText::from(std::size_t offset) const {
  std::string text;
  text.reserve(size() - offset);
  for (std::size_t i = offset / kSegmentSize; i < segments_.size(); ++i)
    text.append(segments_[i], text.empty() ? offset % kSegmentSize : 0);
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
