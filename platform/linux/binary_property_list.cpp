#include "platform/linux/binary_property_list.h"

#include <QStringDecoder>

#include "platform/common/property_list_limits.h"

namespace platform::linux_ {

namespace {

/// The comment at the top of Core Foundation's CFBinaryPList.c has the layout.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::optional<PropertyListValue> read() {
    const std::uint64_t trailer = bytes_.size() - 32;
    offsetSize_ = number(trailer + 6, 1);
    referenceSize_ = number(trailer + 7, 1);
    objectCount_ = number(trailer + 8, 8);
    offsetTable_ = number(trailer + 24, 8);
    auto value = object(number(trailer + 16, 8), 0);
    return isDamaged_ ? std::nullopt : std::optional(std::move(value));
  }

 private:
  PropertyListValue object(std::uint64_t index, std::size_t depth) {
    if (index >= objectCount_ || !budget_.take(depth)) isDamaged_ = true;
    if (isDamaged_) return {};
    std::uint64_t position = number(offsetTable_ + index * offsetSize_, offsetSize_);
    const std::uint64_t marker = number(position++, 1);
    const std::uint64_t kind = marker >> 4;
    std::uint64_t size = marker & 0xF;
    if (kind == 0x0) return marker == 0x9;
    if (kind == 0x1 && size <= 3) return static_cast<std::int64_t>(number(position, 1U << size));
    if (size == 0xF) {  // an integer follows that says it
      const std::uint64_t width = 1U << (number(position++, 1) & 0x3);
      size = number(position, width);
      position += width;
    }
    switch (kind) {
      case 0x5:  // ASCII
        return std::string(piece(position, size));
      case 0x6: {  // UTF-16
        const std::string_view units = piece(position, 2 * size);
        const QByteArrayView view(units.data(), static_cast<qsizetype>(units.size()));
        return QString(QStringDecoder(QStringDecoder::Utf16BE)(view)).toStdString();
      }
      case 0xA: {
        PropertyListArray array;
        for (std::uint64_t i = 0; i < size && !isDamaged_; ++i)
          array.push_back(referredObject(position, i, depth));
        return array;
      }
      case 0xD: {
        PropertyListDictionary dictionary;
        for (std::uint64_t i = 0; i < size && !isDamaged_; ++i) {
          const auto key = referredObject(position, i, depth);
          const auto* text = key.as<std::string>();
          if (!text) isDamaged_ = true;
          dictionary.insert_or_assign(text ? *text : "", referredObject(position, size + i, depth));
        }
        return dictionary;
      }
      default:
        return OpaqueValue{};
    }
  }

  PropertyListValue referredObject(std::uint64_t references, std::uint64_t index,
                                   std::size_t depth) {
    return object(number(references + index * referenceSize_, referenceSize_), depth + 1);
  }

  /// A big-endian number.
  std::uint64_t number(std::uint64_t position, std::uint64_t size) {
    std::uint64_t value = 0;
    for (const char byte : piece(position, size))
      value = value << 8 | static_cast<std::uint8_t>(byte);
    return value;
  }

  /// These bytes; none if the list does not hold them. They count each time: what
  /// is referred to more than once may be read again and again.
  std::string_view piece(std::uint64_t position, std::uint64_t size) {
    const bool isInside = position <= bytes_.size() && size <= bytes_.size() - position;
    if (!isInside || !budget_.take(0, size)) isDamaged_ = true;
    return isDamaged_ ? std::string_view() : bytes_.substr(position, size);
  }

  std::string_view bytes_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t offsetTable_ = 0;
  PropertyListBudget budget_;
  bool isDamaged_ = false;
};

}  // namespace

std::optional<PropertyListValue> decodeBinary(std::string_view bytes) {
  return Reader(bytes).read();
}

}  // namespace platform::linux_
