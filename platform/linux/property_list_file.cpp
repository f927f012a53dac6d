#include "platform/linux/property_list_file.h"

#include <fcntl.h>
#include <plist/plist.h>
#include <sys/file.h>
#include <unistd.h>

#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <memory>
#include <utility>

#include "platform/bundle.h"

namespace platform::linux_ {

namespace {

namespace fs = std::filesystem;

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

/// XML where it reads back as the same value and is well-formed, else binary.
std::string encodeForFile(const PropertyListDictionary& dictionary) {
  std::string xml = encodePropertyList(dictionary, PropertyListFormat::xml);
  const bool wellFormed = std::none_of(xml.begin(), xml.end(), [](unsigned char c) {
    return c < ' ' && c != '\t' && c != '\n' && c != '\r';
  });
  const auto back = decodePropertyList(xml);
  if (wellFormed && back && *back == PropertyListValue(dictionary)) return xml;
  return encodePropertyList(dictionary, PropertyListFormat::binary);
}

std::optional<std::string> readFile(const fs::path& path) {
  QFile file(QString::fromStdString(path.string()));
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray bytes = file.readAll();
  if (file.error() != QFileDevice::NoError) return std::nullopt;
  return bytes.toStdString();
}

bool replaceFile(const fs::path& path, const std::string& bytes) {
  QSaveFile file(QString::fromStdString(path.string()));
  return file.open(QIODevice::WriteOnly) &&
         file.write(bytes.data(), static_cast<qint64>(bytes.size())) ==
             static_cast<qint64>(bytes.size()) &&
         file.commit();
}

/// Holds the lock of a folder. It lies on a file of its own: the files that it
/// guards are replaced, and their locks with them.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : file_(open((folder / ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    while (file_ >= 0 && flock(file_, LOCK_EX) != 0) {
      if (errno == EINTR) continue;
      close(file_);
      file_ = -1;
    }
  }
  ~FolderLock() {
    if (file_ >= 0) close(file_);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

  bool isHeld() const { return file_ >= 0; }

 private:
  int file_;
};

bool keepAside(const fs::path& file) {
  std::error_code error;
  fs::path kept = file.string() + ".damaged";
  for (int i = 2; fs::exists(kept, error); ++i) {
    kept = file.string() + ".damaged-" + std::to_string(i);
  }
  fs::rename(file, kept, error);
  if (error) return false;
  std::cerr << "damaged property list kept as " << kept.string() << std::endl;
  return true;
}

}  // namespace

std::string encodePropertyList(const PropertyListValue& value, PropertyListFormat format) {
  const Node node = toNode(value);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  if (format == PropertyListFormat::xml) {
    plist_to_xml(node.get(), &bytes, &length);
  } else {
    plist_to_bin(node.get(), &bytes, &length);
  }
  const Malloced<char> owned(bytes);
  return bytes ? std::string(bytes, length) : std::string();
}

std::optional<PropertyListValue> decodePropertyList(std::string_view bytes) {
  if (bytes.empty() || bytes.size() > std::numeric_limits<std::uint32_t>::max())
    return std::nullopt;
  const DecimalPoint decimalPoint;
  plist_t parsed = nullptr;
  plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &parsed);
  const Node node(parsed);
  return node ? std::optional(fromNode(node.get())) : std::nullopt;
}

const PropertyListValue* valueIn(const PropertyListDictionary& dictionary, const std::string& key) {
  const auto found = dictionary.find(key);
  return found != dictionary.end() ? &found->second : nullptr;
}

std::optional<std::string> textIn(const PropertyListDictionary& dictionary,
                                  const std::string& key) {
  const auto* value = valueIn(dictionary, key);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

std::vector<std::string> textsIn(const PropertyListDictionary& dictionary, const std::string& key) {
  std::vector<std::string> texts;
  const auto* value = valueIn(dictionary, key);
  if (const auto* array = value ? value->as<PropertyListArray>() : nullptr) {
    for (const auto& item : *array) {
      if (const auto* text = item.as<std::string>()) texts.push_back(*text);
    }
  }
  return texts;
}

bool editPropertyListFile(const fs::path& file,
                          const std::function<void(PropertyListDictionary&)>& change) {
  std::error_code error;
  fs::create_directories(file.parent_path(), error);
  const FolderLock lock(file.parent_path());
  if (!lock.isHeld()) return false;

  PropertyListDictionary before;
  const bool exists = fs::exists(file, error);
  if (error) return false;
  if (exists) {
    const auto bytes = readFile(file);
    if (!bytes) return false;
    const auto value = decodePropertyList(*bytes);
    if (const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr) {
      before = *dictionary;
    } else if (!keepAside(file)) {
      return false;
    }
  }
  PropertyListDictionary after = before;
  change(after);
  return after == before || replaceFile(file, encodeForFile(after));
}

}  // namespace platform::linux_

namespace platform {

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  const auto bytes = linux_::readFile(file);
  const auto value = bytes ? linux_::decodePropertyList(*bytes) : std::nullopt;
  const auto* dictionary = value ? value->as<PropertyListDictionary>() : nullptr;
  return dictionary ? std::optional(*dictionary) : std::nullopt;
}

}  // namespace platform
