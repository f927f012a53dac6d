#include "platform/linux/property_list_limits.h"

#include <QString>
#include <QXmlStreamReader>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace platform::linux_ {

namespace {

constexpr std::string_view kBinaryStart = "bplist00";

/// Walks over the objects of a binary list from the top one down.
/// The comment at the top of Core Foundation's CFBinaryPList.c has the layout.
class BinaryWalk {
 public:
  explicit BinaryWalk(std::string_view bytes) : bytes_(bytes) {}

  bool isSafe() {
    if (!readTrailer()) return false;
    while (!pending_.empty()) {
      const Reference next = pending_.back();
      pending_.pop_back();
      if (!look(next)) return false;
    }
    return true;
  }

 private:
  enum Kind : std::uint8_t {
    singleton = 0x0,
    integer = 0x1,
    real = 0x2,
    date = 0x3,
    data = 0x4,
    ascii = 0x5,
    utf16 = 0x6,
    uid = 0x8,
    array = 0xA,
    dictionary = 0xD,
  };

  struct Reference {
    std::uint64_t object;
    std::size_t depth;
    bool isKey;
  };

  bool readTrailer() {
    constexpr std::size_t kTrailerSize = 32;
    if (bytes_.size() < kBinaryStart.size() + kTrailerSize) return false;
    const std::size_t trailer = bytes_.size() - kTrailerSize;
    offsetSize_ = *number(trailer + 6, 1);
    referenceSize_ = *number(trailer + 7, 1);
    objectCount_ = *number(trailer + 8, 8);
    const std::uint64_t top = *number(trailer + 16, 8);
    offsetTable_ = *number(trailer + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8)
      return false;
    if (offsetTable_ > trailer || objectCount_ > (trailer - offsetTable_) / offsetSize_)
      return false;
    return refer({top, 0, false});
  }

  /// A big-endian number of 1 to 8 bytes; absent if it is not inside the bytes.
  std::optional<std::uint64_t> number(std::uint64_t position, std::uint64_t size) const {
    if (!isInside(position, size)) return std::nullopt;
    std::uint64_t value = 0;
    for (const char byte : bytes_.substr(position, size))
      value = value << 8 | static_cast<unsigned char>(byte);
    return value;
  }

  bool isInside(std::uint64_t position, std::uint64_t size) const {
    return position <= bytes_.size() && size <= bytes_.size() - position;
  }

  bool refer(Reference reference) {
    if (reference.object >= objectCount_ || reference.depth > kPropertyListDepthLimit) return false;
    if (++values_ > kPropertyListValueLimit) return false;
    pending_.push_back(reference);
    return true;
  }

  bool look(const Reference& reference) {
    const auto offset = number(offsetTable_ + reference.object * offsetSize_, offsetSize_);
    if (!offset || *offset >= offsetTable_) return false;
    std::uint64_t position = *offset;
    const std::uint64_t marker = *number(position++, 1);
    const std::uint64_t kind = marker >> 4;
    std::uint64_t size = marker & 0xF;
    if (reference.isKey && kind != ascii && kind != utf16) return false;
    switch (kind) {
      case singleton:
        return true;
      case integer:
      case real:
      case date:
        return size <= 4 && isInside(position, std::uint64_t{1} << size);
      case uid:
        return isInside(position, size + 1);
      default:
        break;
    }
    if (size == 0xF) {
      const auto sizeMarker = number(position++, 1);
      if (!sizeMarker || *sizeMarker >> 4 != integer || (*sizeMarker & 0xF) > 3) return false;
      const std::uint64_t width = std::uint64_t{1} << (*sizeMarker & 0xF);
      const auto following = number(position, width);
      if (!following) return false;
      size = *following;
      position += width;
    }
    // This also keeps the products below from running over.
    if (size > kPropertyListSizeLimit) return false;
    switch (kind) {
      case data:
        return carry(position, size);
      case ascii:
        return carry(position, size) &&
               bytes_.substr(position, size).find('\0') == std::string_view::npos;
      case utf16:
        if (!carry(position, 2 * size)) return false;
        for (std::uint64_t i = 0; i < size; ++i)
          if (number(position + 2 * i, 2) == 0) return false;
        return true;
      case array:
        return referAll(position, size, reference.depth + 1, false);
      case dictionary:
        return referAll(position, size, reference.depth + 1, true) &&
               referAll(position + size * referenceSize_, size, reference.depth + 1, false);
      default:
        return false;
    }
  }

  /// Counts content, which is copied each time an object is used.
  bool carry(std::uint64_t position, std::uint64_t size) {
    content_ += size;
    return isInside(position, size) && content_ <= kPropertyListSizeLimit;
  }

  bool referAll(std::uint64_t position, std::uint64_t count, std::size_t depth, bool areKeys) {
    if (!isInside(position, count * referenceSize_)) return false;
    for (std::uint64_t i = 0; i < count; ++i)
      if (!refer({*number(position + i * referenceSize_, referenceSize_), depth, areKeys}))
        return false;
    return true;
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t offsetTable_ = 0;
  std::vector<Reference> pending_;
  std::size_t values_ = 0;
  std::uint64_t content_ = 0;
};

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
  return bytes.starts_with(kBinaryStart);
}

bool isSafeBinaryPropertyList(std::string_view bytes) {
  return bytes.size() <= kPropertyListSizeLimit && BinaryWalk(bytes).isSafe();
}

bool isSafeXmlPropertyList(std::string_view bytes) {
  if (bytes.size() > kPropertyListSizeLimit || bytes.find('\0') != std::string_view::npos)
    return false;
  // Some writers begin with an empty line.
  bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  if (!QUtf8StringView(view).isValidUtf8()) return false;
  // As a string, whose encoding no declaration in it can change.
  QXmlStreamReader reader(QString::fromUtf8(view));
  std::size_t depth = 0;
  std::size_t values = 0;
  while (!reader.atEnd()) {
    switch (reader.readNext()) {
      case QXmlStreamReader::DTD:
        // Declarations of its own could hide elements from one of the two parsers.
        if (reader.text().contains(u'[')) return false;
        break;
      case QXmlStreamReader::StartElement:
        // One more for the element around the list.
        if (++depth > kPropertyListDepthLimit + 2 || ++values > kPropertyListValueLimit)
          return false;
        break;
      case QXmlStreamReader::EndElement:
        --depth;
        break;
      default:
        break;
    }
  }
  return !reader.hasError();
}

}  // namespace platform::linux_
