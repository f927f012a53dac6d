#include "platform/linux/property_list_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <iostream>
#include <optional>
#include <string>
#include <thread>

#include "platform/linux/property_list_codec.h"
#include "platform/linux/property_list_limits.h"
#include "platform/posix/regular_file.h"

namespace platform::linux_ {

namespace {

namespace fs = std::filesystem;

/// Whether this is the value, as far as a file can carry it.
bool isCarriedAs(const PropertyListValue& carried, const PropertyListValue& value) {
  if (const auto* array = value.as<PropertyListArray>()) {
    const auto* other = carried.as<PropertyListArray>();
    return other && std::ranges::equal(*other, *array, isCarriedAs);
  }
  if (const auto* dictionary = value.as<PropertyListDictionary>()) {
    const auto* other = carried.as<PropertyListDictionary>();
    return other && std::ranges::equal(*other, *dictionary, [](const auto& a, const auto& b) {
             return a.first == b.first && isCarriedAs(a.second, b.second);
           });
  }
  if (const auto* real = value.as<double>()) {
    const auto* other = carried.as<double>();
    return other && (*other == *real || (std::isnan(*other) && std::isnan(*real)));
  }
  // Dates are rounded, and foreign keys are not carried.
  if (value.as<PropertyListDate>()) return carried.as<PropertyListDate>() != nullptr;
  if (value.as<ForeignKeyDictionary>()) {
    const auto* other = carried.as<PropertyListDictionary>();
    return other && other->empty();
  }
  return carried == value;
}

/// XML where it reads back as the same value, else binary; absent if that does
/// not read back either.
std::optional<std::string> encodeForFile(const PropertyListDictionary& dictionary) {
  const PropertyListValue value(dictionary);
  auto xml = encodePropertyList(value, PropertyListFormat::xml);
  if (xml && decodePropertyList(*xml) == value) return xml;
  auto binary = encodePropertyList(value, PropertyListFormat::binary);
  const auto back = binary ? decodePropertyList(*binary) : std::nullopt;
  return back && isCarriedAs(*back, value) ? binary : std::nullopt;
}

/// Writes all bytes, as far as the disk.
bool writeToDisk(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return ::fsync(file) == 0;
}

/// Replaces the file once the new one is whole on the disk. Under the lock, so
/// the new one may always have the same name; one left behind is overwritten.
bool replaceFile(const fs::path& path, std::string_view bytes) {
  const fs::path fresh = path.string() + ".new";
  ::unlink(fresh.c_str());
  Descriptor file(::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file) return false;
  if (writeToDisk(file.get(), bytes) && ::rename(fresh.c_str(), path.c_str()) == 0) {
    const Descriptor folder(::open(path.parent_path().c_str(), O_RDONLY | O_CLOEXEC));
    ::fsync(folder.get());
    return true;
  }
  ::unlink(fresh.c_str());
  return false;
}

/// Holds the lock of a folder. It lies on a file of its own: the files that it
/// guards are replaced, and their locks with them.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : file_(::open((folder / ".lock").c_str(),
                     O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600)) {
    using Clock = std::chrono::steady_clock;
    // Each edit takes milliseconds, so who keeps the lock for longer is stopped.
    // After one wait in vain the next edits do not wait until the lock is free again.
    static std::atomic<bool> isHolderStuck = false;
    const auto end = Clock::now() + std::chrono::milliseconds(isHolderStuck ? 0 : 500);
    while (file_ && ::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EINTR) continue;
      const bool isTooLate = errno == EWOULDBLOCK && Clock::now() >= end;
      if (isTooLate) isHolderStuck = true;
      if (isTooLate || errno != EWOULDBLOCK) {
        file_.close();
      } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
    }
    if (file_) isHolderStuck = false;
  }

  bool isHeld() const { return static_cast<bool>(file_); }

 private:
  Descriptor file_;
};

bool keepAside(const fs::path& file) {
  std::error_code error;
  fs::path kept = file.string() + ".damaged";
  for (int i = 2; fs::exists(fs::symlink_status(kept, error)); ++i) {
    kept = file.string() + ".damaged-" + std::to_string(i);
  }
  fs::rename(file, kept, error);
  if (error) return false;
  std::cerr << "damaged property list kept as " << kept.string() << std::endl;
  return true;
}

}  // namespace

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
    const auto bytes = readRegularFile(file, kPropertyListSizeLimit + 1);
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
  if (after == before) return true;
  const auto bytes = encodeForFile(after);
  return bytes && replaceFile(file, *bytes);
}

}  // namespace platform::linux_
