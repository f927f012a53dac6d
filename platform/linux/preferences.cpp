#include "platform/preferences.h"

#include <QString>
#include <QSysInfo>
#include <filesystem>
#include <utility>

#include "platform/common/property_list_lookups.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/property_list_file.h"

namespace platform {

namespace {

std::filesystem::path preferencesFile(const std::string& application, PreferencesUser user,
                                      PreferencesHost host) {
  std::filesystem::path folder = linux_::userStore() / "Preferences";
  if (user == PreferencesUser::any) folder /= "AnyUser";
  if (host == PreferencesHost::any) return folder / (application + ".plist");
  return folder / "ByHost" /
         (application + "." + QSysInfo::machineHostName().toStdString() + ".plist");
}

/// Whether all that was set since the latest synchronizePreferences() is written.
bool& isAllWritten() {
  static bool value = true;
  return value;
}

}  // namespace

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  const auto stored = readPropertyListDictionary(preferencesFile(application, user, host));
  const auto* value = stored ? valueIn(*stored, key) : nullptr;
  return value ? std::optional(*value) : std::nullopt;
}

void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host) {
  const auto file = preferencesFile(application, user, host);
  isAllWritten() &= linux_::editPropertyListFile(file, [&](PropertyListDictionary& stored) {
    if (value)
      stored.insert_or_assign(key, *value);
    else
      stored.erase(key);
  });
}

bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host) {
  const auto file = preferencesFile(application, user, host);
  std::error_code error;
  const bool isReadable = readPropertyListDictionary(file) || !std::filesystem::exists(file, error);
  return std::exchange(isAllWritten(), true) && isReadable;
}

}  // namespace platform
