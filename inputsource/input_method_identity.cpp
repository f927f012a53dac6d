#include "inputsource/tessal_installer.h"
#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/file_root.h"
#include "platform/workspace.h"

std::string TessalInstaller::rawValue(InputMode mode) {
  switch (mode) {
    case InputMode::pinyin:
      return "com.tessal.inputmethod.Orvane.pinyin";
  }
  return {};
}

std::optional<TessalInstaller::InputMode> TessalInstaller::modeFromRawValue(
    std::string_view rawValueText) {
  for (const InputMode mode : allCases)
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

std::optional<platform::PropertyListDictionary> TessalInstaller::installedInfo() const {
  return platform::readPropertyListDictionary(platform::onDisk(appDir() / "Contents/Info.plist"));
}

std::optional<std::filesystem::path> TessalInstaller::bundledSettingsApplication() const {
  const auto bundled = platform::onDisk(appDir() / "Contents" / "MacOS" / "OrvaneSettings.app");
  std::error_code error;
  return std::filesystem::exists(bundled, error) ? std::optional(bundled) : std::nullopt;
}

std::optional<std::filesystem::path> TessalInstaller::otherSettingsApplication() const {
  return platform::findApplication("com.tessal.inputmethod.Orvane.settings");
}

std::optional<std::string> TessalInstaller::readInstalledBundleIdentifier() const {
  const auto info = installedInfo();
  return info ? platform::textIn(*info, "CFBundleIdentifier") : std::nullopt;
}
