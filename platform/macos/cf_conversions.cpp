#include "platform/macos/cf_conversions.h"

#include <utf8.h>

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <variant>

namespace platform {

namespace {

struct ToCf {
  CfRef<CFPropertyListRef> operator()(bool value) const {
    return retain<CFPropertyListRef>(value ? kCFBooleanTrue : kCFBooleanFalse);
  }
  CfRef<CFPropertyListRef> operator()(std::int64_t value) const {
    return adopt<CFPropertyListRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
  }
  CfRef<CFPropertyListRef> operator()(double value) const {
    return adopt<CFPropertyListRef>(CFNumberCreate(nullptr, kCFNumberDoubleType, &value));
  }
  CfRef<CFPropertyListRef> operator()(const std::string& value) const { return toCfString(value); }
  CfRef<CFPropertyListRef> operator()(const PropertyListDate& value) const {
    return adopt<CFPropertyListRef>(CFDateCreate(nullptr, value.secondsSince2001));
  }
  CfRef<CFPropertyListRef> operator()(const PropertyListData& value) const {
    return adopt<CFPropertyListRef>(CFDataCreate(
        nullptr, reinterpret_cast<const UInt8*>(value.data()), static_cast<CFIndex>(value.size())));
  }
  CfRef<CFPropertyListRef> operator()(const PropertyListArray& value) const {
    auto array = adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const auto& element : value) {
      CFArrayAppendValue(array.get(), toCfPropertyList(element).get());
    }
    return array;
  }
  CfRef<CFPropertyListRef> operator()(const PropertyListDictionary& value) const {
    auto dictionary = emptyDictionary();
    for (const auto& [key, element] : value) {
      CFDictionarySetValue(dictionary.get(), toCfString(key).get(),
                           toCfPropertyList(element).get());
    }
    return dictionary;
  }
  CfRef<CFPropertyListRef> operator()(ForeignKeyDictionary) const { return emptyDictionary(); }

 private:
  static CfRef<CFMutableDictionaryRef> emptyDictionary() {
    return adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                           &kCFTypeDictionaryValueCallBacks));
  }
};

PropertyListValue fromNumber(CFNumberRef number) {
  if (CFNumberIsFloatType(number)) {
    double value = 0.0;
    CFNumberGetValue(number, kCFNumberDoubleType, &value);
    return value;
  }
  std::int64_t value = 0;
  if (CFNumberGetValue(number, kCFNumberSInt64Type, &value)) return value;
  // An integer above the signed range: as near as another number comes.
  double nearest = 0.0;
  CFNumberGetValue(number, kCFNumberDoubleType, &nearest);
  return nearest;
}

PropertyListData fromData(CFDataRef data) {
  const auto* bytes = reinterpret_cast<const std::byte*>(CFDataGetBytePtr(data));
  return {bytes, bytes + CFDataGetLength(data)};
}

PropertyListArray fromArray(CFArrayRef array) {
  PropertyListArray values;
  const CFIndex count = CFArrayGetCount(array);
  for (CFIndex index = 0; index < count; ++index) {
    if (auto value = toPropertyListValue(CFArrayGetValueAtIndex(array, index))) {
      values.push_back(*std::move(value));
    }
  }
  return values;
}

PropertyListValue fromDictionary(CFDictionaryRef dictionary) {
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count);
  std::vector<const void*> objects(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), objects.data());
  PropertyListDictionary values;
  for (std::size_t index = 0; index < count; ++index) {
    if (CFGetTypeID(keys[index]) != CFStringGetTypeID()) return ForeignKeyDictionary{};
    if (auto value = toPropertyListValue(objects[index])) {
      values.insert_or_assign(toString(static_cast<CFStringRef>(keys[index])), *std::move(value));
    }
  }
  return values;
}

}  // namespace

CfRef<CFStringRef> toCfString(std::string_view text) {
  // Core Foundation's own reader of UTF-8 drops a leading byte order mark.
  std::u16string units;
  if (utf8::is_valid(text.begin(), text.end())) {
    utf8::utf8to16(text.begin(), text.end(), std::back_inserter(units));
  } else {
    for (const char byte : text) units.push_back(static_cast<unsigned char>(byte));
  }
  return adopt(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                            static_cast<CFIndex>(units.size())));
}

std::string toString(CFStringRef text) {
  const CFIndex length = CFStringGetLength(text);
  const CFIndex capacity = CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8);
  std::string piece(static_cast<std::size_t>(capacity), '\0');
  std::string result;
  for (CFIndex start = 0; start < length;) {
    CFIndex used = 0;
    start += CFStringGetBytes(text, CFRangeMake(start, length - start), kCFStringEncodingUTF8, '?',
                              false, reinterpret_cast<UInt8*>(piece.data()), capacity, &used);
    result.append(piece, 0, static_cast<std::size_t>(used));
    // It may stop at half of a surrogate pair, although it was given a loss byte.
    if (start < length) {
      result += '?';
      ++start;
    }
  }
  return result;
}

CfRef<CFURLRef> toCfUrl(const std::filesystem::path& path, bool isDirectory) {
  const std::string& bytes = path.native();
  return adopt(
      CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                              static_cast<CFIndex>(bytes.size()), isDirectory));
}

std::optional<std::filesystem::path> toPath(CFURLRef url) {
  // Any URL has a path to it, that of a web page too.
  const auto scheme = adopt(CFURLCopyScheme(url));
  if (!scheme || toString(scheme.get()) != "file") return std::nullopt;
  std::array<char, PATH_MAX> buffer{};
  if (!CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8*>(buffer.data()),
                                        static_cast<CFIndex>(buffer.size()))) {
    return std::nullopt;
  }
  return std::filesystem::path(buffer.data());
}

CfRef<CFPropertyListRef> toCfPropertyList(const PropertyListValue& value) {
  return std::visit(ToCf{}, static_cast<const PropertyListValue::variant&>(value));
}

std::optional<PropertyListValue> toPropertyListValue(CFTypeRef object) {
  if (object == nullptr) return std::nullopt;
  const CFTypeID type = CFGetTypeID(object);
  // A CFBoolean is no CFNumber, though NSNumber stands for both.
  if (type == CFBooleanGetTypeID()) {
    return CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0;
  }
  if (type == CFNumberGetTypeID()) return fromNumber(static_cast<CFNumberRef>(object));
  if (type == CFStringGetTypeID()) return toString(static_cast<CFStringRef>(object));
  if (type == CFDateGetTypeID()) {
    return PropertyListDate{CFDateGetAbsoluteTime(static_cast<CFDateRef>(object))};
  }
  if (type == CFDataGetTypeID()) return fromData(static_cast<CFDataRef>(object));
  if (type == CFArrayGetTypeID()) return fromArray(static_cast<CFArrayRef>(object));
  if (type == CFDictionaryGetTypeID()) return fromDictionary(static_cast<CFDictionaryRef>(object));
  return std::nullopt;
}

}  // namespace platform
