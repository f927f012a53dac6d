#include "platform/linux/property_list_codec.h"

#include <plist/plist.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>

#include "platform/linux/property_list_limits.h"

namespace platform::linux_ {

namespace {

struct NodeDeleter {
  void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeDeleter>;

struct FreeDeleter {
  void operator()(void* memory) const {
    std::free(memory);  // NOLINT(cppcoreguidelines-owning-memory): libplist's own
  }
};
template <class T>
using Malloced = std::unique_ptr<T, FreeDeleter>;

/// Numbers with a decimal point in this thread: libplist reads them as the
/// user's locale has them.
class DecimalPoint {
 public:
  DecimalPoint() : locale_(newlocale(LC_NUMERIC_MASK, "C", nullptr)), before_(uselocale(locale_)) {}
  ~DecimalPoint() {
    uselocale(before_);
    freelocale(locale_);
  }
  DecimalPoint(const DecimalPoint&) = delete;
  DecimalPoint& operator=(const DecimalPoint&) = delete;

 private:
  locale_t locale_;
  locale_t before_;
};

Node toNode(const PropertyListValue& value);

struct NodeBuilder {
  Node operator()(bool value) const { return Node(plist_new_bool(value ? 1 : 0)); }
  // libplist writes the bits of a negative number as a signed one.
  Node operator()(std::int64_t value) const {
    return Node(plist_new_uint(static_cast<std::uint64_t>(value)));
  }
  Node operator()(double value) const { return Node(plist_new_real(value)); }
  Node operator()(const std::string& value) const { return Node(plist_new_string(value.c_str())); }
  Node operator()(const PropertyListDate& value) const {
    using Limits = std::numeric_limits<std::int32_t>;
    const double clamped =
        std::clamp(value.secondsSince2001, double{Limits::min()}, double{Limits::max()});
    const double seconds = std::floor(clamped);
    return Node(plist_new_date(static_cast<std::int32_t>(seconds),
                               static_cast<std::int32_t>(std::lround((clamped - seconds) * 1e6))));
  }
  Node operator()(const PropertyListData& value) const {
    const char empty = 0;
    return Node(plist_new_data(value.empty() ? &empty : reinterpret_cast<const char*>(value.data()),
                               value.size()));
  }
  Node operator()(const PropertyListArray& value) const {
    Node array(plist_new_array());
    for (const auto& item : value) plist_array_append_item(array.get(), toNode(item).release());
    return array;
  }
  Node operator()(const PropertyListDictionary& value) const {
    Node dictionary(plist_new_dict());
    for (const auto& [key, item] : value) {
      plist_dict_set_item(dictionary.get(), key.c_str(), toNode(item).release());
    }
    return dictionary;
  }
  Node operator()(const ForeignKeyDictionary& /*value*/) const { return Node(plist_new_dict()); }
};

Node toNode(const PropertyListValue& value) {
  return std::visit(NodeBuilder{}, value);
}

PropertyListValue fromNode(plist_t node);

PropertyListDictionary dictionaryFrom(plist_t node) {
  PropertyListDictionary dictionary;
  plist_dict_iter started = nullptr;
  plist_dict_new_iter(node, &started);
  const Malloced<void> iterator(started);
  while (true) {
    char* key = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, iterator.get(), &key, &item);
    const Malloced<char> owned(key);
    if (!key || !item) return dictionary;
    dictionary.insert_or_assign(key, fromNode(item));
  }
}

PropertyListValue fromNode(plist_t node) {
  std::uint64_t length = 0;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN:
      return plist_bool_val_is_true(node) != 0;
    case PLIST_UINT: {
      std::uint64_t value = 0;
      plist_get_uint_val(node, &value);
      return static_cast<std::int64_t>(value);
    }
    case PLIST_REAL: {
      double value = 0.0;
      plist_get_real_val(node, &value);
      return value;
    }
    case PLIST_STRING: {
      const char* text = plist_get_string_ptr(node, &length);
      return text ? std::string(text, length) : std::string();
    }
    case PLIST_DATE: {
      std::int32_t seconds = 0;
      std::int32_t microseconds = 0;
      plist_get_date_val(node, &seconds, &microseconds);
      return PropertyListDate{seconds + microseconds / 1e6};
    }
    case PLIST_DATA: {
      const auto* bytes = reinterpret_cast<const std::byte*>(plist_get_data_ptr(node, &length));
      return bytes ? PropertyListData(bytes, bytes + length) : PropertyListData();
    }
    case PLIST_ARRAY: {
      PropertyListArray array;
      const std::uint32_t size = plist_array_get_size(node);
      for (std::uint32_t i = 0; i < size; ++i) {
        array.push_back(fromNode(plist_array_get_item(node, i)));
      }
      return array;
    }
    case PLIST_DICT:
      return dictionaryFrom(node);
    case PLIST_UID: {
      // As XML writes it.
      std::uint64_t value = 0;
      plist_get_uid_val(node, &value);
      return PropertyListDictionary{{"CF$UID", static_cast<std::int64_t>(value)}};
    }
    default:
      return std::string();
  }
}

/// Whether a value nests and counts no more than may be given to libplist.
/// `left` is the number of values that may still come.
bool isWithinLimits(const PropertyListValue& value, std::size_t depth, std::size_t& left) {
  if (left == 0 || depth > kPropertyListDepthLimit) return false;
  --left;
  if (const auto* array = value.as<PropertyListArray>())
    return std::ranges::all_of(
        *array, [&](const auto& item) { return isWithinLimits(item, depth + 1, left); });
  if (const auto* dictionary = value.as<PropertyListDictionary>())
    return std::ranges::all_of(*dictionary, [&](const auto& entry) {
      return isWithinLimits(entry.second, depth + 1, left);
    });
  return true;
}

}  // namespace

std::optional<std::string> encodePropertyList(const PropertyListValue& value,
                                              PropertyListFormat format) {
  std::size_t left = kPropertyListValueLimit;
  if (!isWithinLimits(value, 0, left)) return std::nullopt;
  const Node node = toNode(value);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  if (format == PropertyListFormat::xml) {
    plist_to_xml(node.get(), &bytes, &length);
  } else {
    plist_to_bin(node.get(), &bytes, &length);
  }
  const Malloced<char> owned(bytes);
  return bytes ? std::optional(std::string(bytes, length)) : std::nullopt;
}

std::optional<PropertyListValue> decodePropertyList(std::string_view bytes) {
  const bool isBinary = isBinaryPropertyList(bytes);
  if (!(isBinary ? isSafeBinaryPropertyList(bytes) : isSafeXmlPropertyList(bytes)))
    return std::nullopt;
  const DecimalPoint decimalPoint;
  plist_t parsed = nullptr;
  const auto length = static_cast<std::uint32_t>(bytes.size());
  if (isBinary) {
    plist_from_bin(bytes.data(), length, &parsed);
  } else {
    plist_from_xml(bytes.data(), length, &parsed);
  }
  const Node node(parsed);
  return node ? std::optional(fromNode(node.get())) : std::nullopt;
}

}  // namespace platform::linux_
