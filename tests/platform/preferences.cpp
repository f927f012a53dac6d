#include "platform/preferences.h"

#include "tests/platform/test_platform.h"

namespace platform {

// Only what the product uses is here: a call for another domain, user or host fails.
static bool isHere(const std::string& application, PreferencesUser user, PreferencesHost host) {
  return application == "com.apple.HIToolbox" && user == PreferencesUser::current &&
         host == PreferencesHost::current;
}

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  if (!isHere(application, user, host)) return std::nullopt;
  return test::valueIn(test::active->preferences, key);
}
void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host) {
  if (!isHere(application, user, host)) return;
  test::note("set " + key);
  test::active->preferences[key] = value.value();
}
bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host) {
  test::note("synchronize");
  return isHere(application, user, host);
}

}  // namespace platform
