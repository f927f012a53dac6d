#include "platform/preferences.h"

#include "tests/platform/test_platform.h"

namespace platform {

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  if (application != "com.apple.HIToolbox" || user != PreferencesUser::current ||
      host != PreferencesHost::current)
    return std::nullopt;
  const auto found = test::active->preferences.find(key);
  if (found == test::active->preferences.end()) return std::nullopt;
  return found->second;
}
void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser, PreferencesHost) {
  test::note("set " + application + " " + key);
  if (value)
    test::active->preferences[key] = *value;
  else
    test::active->preferences.erase(key);
}
bool synchronizePreferences(const std::string& application, PreferencesUser, PreferencesHost) {
  test::note("synchronize " + application);
  return true;
}

}  // namespace platform
