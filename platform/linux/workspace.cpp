#include "platform/workspace.h"

#include <QUrl>

#include "platform/common/property_list_lookups.h"
#include "platform/file_root.h"
#include "platform/linux/detached_process.h"
#include "platform/linux/environment.h"
#include "platform/linux/input_source_service.h"

namespace platform {

namespace {

namespace fs = std::filesystem;

std::optional<std::string> infoText(const fs::path& bundle, const std::string& key) {
  const auto info = readPropertyListDictionary(bundle / "Contents" / "Info.plist");
  return info ? textIn(*info, key) : std::nullopt;
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
  // findApplication() looks for itself, so there is nothing to keep.
  return fs::exists(bundle, error) ? kNoError : kParameterError;
}

bool openUrl(const Url& url) {
  if (!url.text.starts_with("x-apple.systempreferences:") || !linux_::hasDisplay()) return false;
  // Asking the user once more stands for the settings.
  for (const auto& source : linux_::installedInputSources())
    if (!source->isEnabled) return enableInputSource(source) == kNoError;
  return true;
}

void openApplication(const fs::path& bundle) {
  const std::string executable =
      infoText(bundle, "CFBundleExecutable").value_or(bundle.stem().string());
  linux_::startDetached(bundle / "Contents" / "MacOS" / executable, {});
}

std::optional<fs::path> findApplication(const std::string& bundleIdentifier) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(onDisk("/Applications"), error))
    if (infoText(entry.path(), "CFBundleIdentifier") == bundleIdentifier) return entry.path();
  return std::nullopt;
}

}  // namespace platform
