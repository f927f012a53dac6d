#include "platform/preferences.h"

#include <QString>
#include <QSysInfo>
#include <filesystem>
#include <map>

#include "platform/bundle.h"
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

/// Absent: the key is to be removed.
using Changes = std::map<std::string, std::optional<PropertyListValue>>;

/// What has been set and not yet written, by file.
std::map<std::filesystem::path, Changes>& unwritten() {
  static std::map<std::filesystem::path, Changes> values;
  return values;
}

}  // namespace

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  const auto file = preferencesFile(application, user, host);
  if (const auto pending = unwritten().find(file); pending != unwritten().end()) {
    if (const auto found = pending->second.find(key); found != pending->second.end())
      return found->second;
  }
  const auto stored = readPropertyListDictionary(file);
  const auto* value = stored ? valueIn(*stored, key) : nullptr;
  return value ? std::optional(*value) : std::nullopt;
}

void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host) {
  unwritten()[preferencesFile(application, user, host)].insert_or_assign(key, value);
}

bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host) {
  const auto pending = unwritten().find(preferencesFile(application, user, host));
  if (pending == unwritten().end()) return true;
  const bool written =
      linux_::editPropertyListFile(pending->first, [&](PropertyListDictionary& stored) {
        for (const auto& [key, value] : pending->second) {
          if (value)
            stored.insert_or_assign(key, *value);
          else
            stored.erase(key);
        }
      });
  if (written) unwritten().erase(pending);
  return written;
}

}  // namespace platform
