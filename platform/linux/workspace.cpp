#include "platform/workspace.h"

#include <QUrl>
#include <algorithm>
#include <set>

#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/linux/detached_process.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/property_list_file.h"
#include "platform/linux/status.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* kRegisteredKey = "registered";

fs::path registryFile() {
  return linux_::userStore() / "LaunchServices.plist";
}

std::optional<std::string> infoText(const fs::path& bundle, const std::string& key) {
  const auto info = readPropertyListDictionary(bundle / "Contents" / "Info.plist");
  return info ? textIn(*info, key) : std::nullopt;
}

std::vector<fs::path> registeredBundles() {
  const auto registry = readPropertyListDictionary(registryFile());
  const auto paths = registry ? textsIn(*registry, kRegisteredKey) : std::vector<std::string>();
  return {paths.begin(), paths.end()};
}

/// The applications below "/Applications", in the order of their paths, without
/// those inside others.
std::vector<fs::path> applications() {
  std::vector<fs::path> found;
  std::error_code error;
  fs::recursive_directory_iterator entry(onDisk("/Applications"),
                                         fs::directory_options::skip_permission_denied, error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() != ".app") continue;
    found.push_back(entry->path());
    entry.disable_recursion_pending();
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool isInputSourceSettings(const Url& url) {
  static const std::set<std::string> kLinks = {
      "x-apple.systempreferences:com.apple.preference.keyboard?InputSources",
      "x-apple.systempreferences:com.apple.Keyboard-Settings.extension",
      "file:///System/Library/PreferencePanes/Keyboard.prefPane",
      "file:///System/Library/PreferencePanes/Keyboard.prefPane/",
  };
  return kLinks.contains(url.text);
}

}  // namespace

std::optional<Url> parseUrl(const std::string& text) {
  const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
  return url.isValid() && !url.isRelative() ? std::optional(Url{text}) : std::nullopt;
}

Url fileUrl(const fs::path& path) {
  return {QUrl::fromLocalFile(QString::fromStdString(path.string())).toEncoded().toStdString()};
}

Status registerWithLaunchServices(const fs::path& bundle, bool /*inUpdate*/) {
  std::error_code error;
  if (!fs::exists(bundle, error)) return linux_::kFileNotFound;
  const bool written =
      linux_::editPropertyListFile(registryFile(), [&](PropertyListDictionary& registry) {
        // Only the place is kept: a look-up reads what the bundle says then, so
        // an update has nothing to add.
        const auto known = textsIn(registry, kRegisteredKey);
        std::set<std::string> paths(known.begin(), known.end());
        paths.insert(bundle.string());
        registry[kRegisteredKey] = PropertyListArray(paths.begin(), paths.end());
      });
  return written ? kNoError : linux_::kInputOutputError;
}

bool openUrl(const Url& url) {
  return isInputSourceSettings(url) && linux_::startInputSourceAgent({"--settings"});
}

void openApplication(const fs::path& bundle) {
  const std::string executable =
      infoText(bundle, "CFBundleExecutable").value_or(bundle.stem().string());
  linux_::startDetached(bundle / "Contents" / "MacOS" / executable, {});
}

std::optional<fs::path> findApplication(const std::string& bundleIdentifier) {
  for (const auto& places : {registeredBundles(), applications()}) {
    for (const auto& bundle : places) {
      if (infoText(bundle, "CFBundleIdentifier") == bundleIdentifier) return bundle;
    }
  }
  return std::nullopt;
}

}  // namespace platform
