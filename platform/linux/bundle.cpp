#include "platform/bundle.h"

#include <system_error>

#include "platform/common/property_list_lookups.h"

namespace platform {

namespace {

/// The "Contents" folder around the running program. Asked afresh each time: the
/// bundle may be moved while it runs.
std::filesystem::path contentsFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().parent_path();
}

}  // namespace

std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type) {
  const auto resource = contentsFolder() / "Resources" / (name + "." + type);
  std::error_code error;
  return std::filesystem::exists(resource, error) ? std::optional(resource) : std::nullopt;
}

std::filesystem::path bundleLocation() {
  return contentsFolder().parent_path();
}

std::optional<std::string> bundleInfoText(const std::string& key) {
  const auto info = readPropertyListDictionary(contentsFolder() / "Info.plist");
  return info ? textIn(*info, key) : std::nullopt;
}

}  // namespace platform
