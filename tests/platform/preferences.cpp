#include "platform/preferences.h"

#include "tests/platform/test_platform.h"

namespace platform {

namespace {
bool isOwn(PreferencesUser user, PreferencesHost host) {
  return user == PreferencesUser::current && host == PreferencesHost::current;
}
std::string scope(PreferencesUser user, PreferencesHost host) {
  return isOwn(user, host) ? "" : " of any user or host";
}
}  // namespace

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  if (application != "com.apple.HIToolbox" || !isOwn(user, host)) return std::nullopt;
  return test::valueIn(test::active->preferences, key);
}
void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host) {
  test::note("set " + application + " " + key + scope(user, host));
  if (!isOwn(user, host)) return;
  if (value)
    test::active->preferences[key] = *value;
  else
    test::active->preferences.erase(key);
}
bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host) {
  test::note("synchronize " + application + scope(user, host));
  return true;
}

}  // namespace platform
