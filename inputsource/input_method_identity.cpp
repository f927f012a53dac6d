#include "inputsource/tessal_installer.h"
#include "platform/bundle.h"
#include "platform/file_root.h"

std::string TessalInstaller::rawValue(InputMode mode) {
  switch (mode) {
    case InputMode::pinyin:
      return "com.tessal.inputmethod.Orvane.pinyin";
  }
  return {};
}

std::optional<TessalInstaller::InputMode> TessalInstaller::modeFromRawValue(
    std::string_view rawValueText) {
  for (const InputMode mode : kAllModes)
    if (rawValue(mode) == rawValueText) return mode;
  return std::nullopt;
}

const std::filesystem::path& TessalInstaller::appDir() {
  static const std::filesystem::path location = "/Library/Input Methods/Orvane.app";
  return location;
}

bool TessalInstaller::isInstalled() const {
  std::error_code error;
  return std::filesystem::exists(platform::onDisk(appDir()), error);
}

std::optional<std::string> TessalInstaller::readInstalledBundleIdentifier() const {
  const auto info =
      platform::readPropertyListDictionary(platform::onDisk(appDir() / "Contents/Info.plist"));
  if (!info) return std::nullopt;
  const auto entry = info->find("CFBundleIdentifier");
  if (entry == info->end()) return std::nullopt;
  const auto* identifier = entry->second.as<std::string>();
  return identifier ? std::optional(*identifier) : std::nullopt;
}
