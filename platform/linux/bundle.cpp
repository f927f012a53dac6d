#include "platform/bundle.h"

#include <system_error>

#include "platform/common/property_list_lookups.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

/// The "Contents" folder around the running program; absent if it is in no
/// bundle. Asked afresh each time: the bundle may be moved while it runs.
std::optional<fs::path> contentsFolder() {
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  const bool inBundle = (folder.filename() == "MacOS" || folder.filename() == "Helpers") &&
                        folder.parent_path().filename() == "Contents";
  return inBundle ? std::optional(folder.parent_path()) : std::nullopt;
}

}  // namespace

std::optional<fs::path> bundleResource(const std::string& name, const std::string& type) {
  const auto contents = contentsFolder();
  if (!contents) return std::nullopt;
  const fs::path resource = *contents / "Resources" / (type.empty() ? name : name + "." + type);
  std::error_code error;
  return fs::exists(resource, error) ? std::optional(resource) : std::nullopt;
}

fs::path bundleLocation() {
  if (const auto contents = contentsFolder()) return contents->parent_path();
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).parent_path();
}

std::optional<PropertyListValue> bundleInfoValue(const std::string& key) {
  const auto contents = contentsFolder();
  const auto info = contents ? readPropertyListDictionary(*contents / "Info.plist") : std::nullopt;
  const auto* value = info ? valueIn(*info, key) : nullptr;
  return value ? std::optional(*value) : std::nullopt;
}

}  // namespace platform
