#include "platform/bundle.h"

#include "platform/common/property_list_lookups.h"
#include "tests/platform/test_platform.h"

namespace platform {

std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type) {
  if (!test::active->hasInstallScript) return std::nullopt;
  return bundleLocation() / "Contents/Resources" / (name + "." + type);
}
std::filesystem::path bundleLocation() {
  return "/Volumes/Orvane/Orvane Installer.app";
}
std::optional<std::string> bundleInfoText(const std::string& key) {
  return textIn(test::active->info, key);
}

}  // namespace platform
