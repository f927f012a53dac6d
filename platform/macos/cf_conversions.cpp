#include "platform/macos/cf_conversions.h"

#include <utf8.h>

#include <array>
#include <climits>
#include <cstddef>
#include <utility>
#include <variant>

#include "platform/common/property_list_limits.h"

namespace platform {

struct OpaqueObject {
  CfRef<CFTypeRef> object;
};

bool operator==(const OpaqueValue& left, const OpaqueValue& right) {
  return CFEqual(left.object->object.get(), right.object->object.get()) != 0;
}

namespace {

struct ToCf {
  CfRef<CFPropertyListRef> operator()(bool value) const {
    return retain<CFPropertyListRef>(value ? kCFBooleanTrue : kCFBooleanFalse);
  }
  CfRef<CFPropertyListRef> operator()(const std::string& value) const { return toCfString(value); }
  CfRef<CFPropertyListRef> operator()(const PropertyListArray& value) const {
    auto array = adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    for (const auto& element : value) {
      CFArrayAppendValue(array.get(), toCfPropertyList(element).get());
    }
    return array;
  }
  CfRef<CFPropertyListRef> operator()(const PropertyListDictionary& value) const {
    auto dictionary = adopt(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                                      &kCFTypeDictionaryValueCallBacks));
    for (const auto& [key, element] : value) {
      CFDictionarySetValue(dictionary.get(), toCfString(key).get(),
                           toCfPropertyList(element).get());
    }
    return dictionary;
  }
  CfRef<CFPropertyListRef> operator()(const OpaqueValue& value) const {
    return retain<CFPropertyListRef>(value.object->object.get());
  }
};

OpaqueValue opaque(CFTypeRef object) {
  const bool isDictionary = CFGetTypeID(object) == CFDictionaryGetTypeID();
  return {std::make_shared<const OpaqueObject>(OpaqueObject{retain(object)}), isDictionary};
}

/// Whether text is UTF-8 as a whole: half a character has none.
bool isWhole(CFStringRef text) {
  const CFIndex length = CFStringGetLength(text);
  return CFStringGetBytes(text, CFRangeMake(0, length), kCFStringEncodingUTF8, 0, false, nullptr, 0,
                          nullptr) == length;
}

/// Takes over one list, as far as the limits allow if they hold for it.
class FromCf {
 public:
  explicit FromCf(bool isLimited) : isLimited_(isLimited) {}

  PropertyListValue value(CFTypeRef object, std::size_t depth = 0) {
    take(depth);
    const CFTypeID type = CFGetTypeID(object);
    if (type == CFBooleanGetTypeID()) {
      return CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0;
    }
    if (type == CFStringGetTypeID() && isWhole(static_cast<CFStringRef>(object))) {
      return text(static_cast<CFStringRef>(object));
    }
    if (type == CFArrayGetTypeID()) return array(static_cast<CFArrayRef>(object), depth);
    if (type == CFDictionaryGetTypeID()) {
      return dictionary(static_cast<CFDictionaryRef>(object), depth);
    }
    return opaque(object);
  }

  bool isBeyondLimits() const { return budget_.isExceeded(); }

 private:
  std::string text(CFStringRef text) {
    take(0, static_cast<std::size_t>(CFStringGetLength(text)));
    return toString(text);
  }

  PropertyListArray array(CFArrayRef array, std::size_t depth) {
    PropertyListArray values;
    const CFIndex count = CFArrayGetCount(array);
    for (CFIndex index = 0; index < count && !isBeyondLimits(); ++index) {
      values.push_back(value(CFArrayGetValueAtIndex(array, index), depth + 1));
    }
    return values;
  }

  PropertyListValue dictionary(CFDictionaryRef dictionary, std::size_t depth) {
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> objects(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), objects.data());
    PropertyListDictionary values;
    for (std::size_t index = 0; index < count && !isBeyondLimits(); ++index) {
      if (CFGetTypeID(keys[index]) != CFStringGetTypeID() ||
          !isWhole(static_cast<CFStringRef>(keys[index]))) {
        return opaque(dictionary);
      }
      values.insert_or_assign(text(static_cast<CFStringRef>(keys[index])),
                              value(objects[index], depth + 1));
    }
    return values;
  }

  void take(std::size_t depth, std::size_t textSize = 0) {
    if (isLimited_) budget_.take(depth, textSize);
  }

  bool isLimited_;
  PropertyListBudget budget_;
};

}  // namespace

CfRef<CFStringRef> toCfString(std::string_view text) {
  // Core Foundation's own reader of UTF-8 drops a leading byte order mark.
  const std::u16string units = utf8::utf8to16(utf8::replace_invalid(std::string(text)));
  return adopt(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                            static_cast<CFIndex>(units.size())));
}

std::string toString(CFStringRef text) {
  const CFIndex length = CFStringGetLength(text);
  const CFIndex capacity = CFStringGetMaximumSizeForEncoding(length, kCFStringEncodingUTF8);
  std::string bytes(static_cast<std::size_t>(capacity), '\0');
  CFIndex used = 0;
  CFStringGetBytes(text, CFRangeMake(0, length), kCFStringEncodingUTF8, '?', false,
                   reinterpret_cast<UInt8*>(bytes.data()), capacity, &used);
  bytes.resize(static_cast<std::size_t>(used));
  return bytes;
}

CfRef<CFURLRef> toCfUrl(const std::filesystem::path& path, bool isDirectory) {
  const std::string& bytes = path.native();
  return adopt(
      CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(bytes.data()),
                                              static_cast<CFIndex>(bytes.size()), isDirectory));
}

std::optional<std::filesystem::path> toPath(CFURLRef url) {
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

std::optional<PropertyListValue> toPropertyListValue(CFTypeRef object, bool isLimited) {
  if (object == nullptr) return std::nullopt;
  FromCf reader(isLimited);
  auto value = reader.value(object);
  return reader.isBeyondLimits() ? std::nullopt : std::optional(std::move(value));
}

}  // namespace platform
