// A list, made up from bytes, to preferences: it is stored as it is, or nothing
// changes.

#include <filesystem>

#include "platform/linux/file_root_linux.h"
#include "platform/linux/property_list_file.h"
#include "tests/fuzz/require.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

/// Takes values from bytes; at their end there are only empty ones.
class Maker {
 public:
  Maker(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  PropertyListValue value(int depth = 0) {
    const std::uint8_t kind = depth > 200 ? 3 : byte() % 9;
    switch (kind) {
      case 0:
        return byte() % 2 == 0;
      case 1:
        return static_cast<std::int64_t>(number());
      case 2:
        // Not NaN, which is not equal to itself.
        return static_cast<double>(static_cast<std::int64_t>(number())) / 3.0;
      case 4:
        // Whole seconds within what every form carries.
        return PropertyListDate{static_cast<double>(number() % 2'000'000'000)};
      case 5: {
        const std::string bytes = text();
        const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
        return PropertyListData(first, first + bytes.size());
      }
      case 6:
      case 7: {
        PropertyListArray array;
        for (int count = byte() % 8; count > 0; --count) array.push_back(value(depth + 1));
        return array;
      }
      case 8:
        return dictionary(depth + 1);
      default:
        return text();
    }
  }

  PropertyListDictionary dictionary(int depth) {
    PropertyListDictionary entries;
    for (int count = byte() % 8; count > 0; --count) {
      std::string key = text();
      entries.insert_or_assign(std::move(key), value(depth));
    }
    return entries;
  }

  bool isEmpty() const { return size_ == 0; }

 private:
  std::uint8_t byte() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  std::uint64_t number() {
    std::uint64_t value = 0;
    for (int i = byte() % 9; i > 0; --i) value = value << 8 | byte();
    return value;
  }
  std::string text() {
    std::string made;
    for (int i = byte() % 32; i > 0; --i) made += static_cast<char>(byte());
    return made;
  }

  const std::uint8_t* data_;
  std::size_t size_;
};

const fs::path& root() {
  static const fs::path folder = [] {
    std::string pattern = fs::temp_directory_path() / "orvane-fuzz-XXXXXX";
    static fs::path made = ::mkdtemp(pattern.data());
    std::atexit([] { fs::remove_all(made); });
    linux_::setFileRoot(made);
    return made;
  }();
  return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fs::path file = root() / "list.plist";
  std::error_code error;
  fs::remove(file, error);
  Maker maker(data, size);
  PropertyListDictionary before;
  while (!maker.isEmpty()) {
    const auto wanted = maker.dictionary(0);
    const bool isStored = linux_::editPropertyListFile(
        file, [&](PropertyListDictionary& stored) { stored = wanted; });
    const auto now = readPropertyListDictionary(file).value_or(PropertyListDictionary());
    require(now == (isStored ? wanted : before));
    before = now;
  }
  return 0;
}
