#include "platform/preferences.h"

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"

namespace platform {

namespace {

CFStringRef name(PreferencesUser user) {
  return user == PreferencesUser::current ? kCFPreferencesCurrentUser : kCFPreferencesAnyUser;
}

CFStringRef name(PreferencesHost host) {
  return host == PreferencesHost::current ? kCFPreferencesCurrentHost : kCFPreferencesAnyHost;
}

}  // namespace

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  const auto value = adopt(CFPreferencesCopyValue(
      toCfString(key).get(), toCfString(application).get(), name(user), name(host)));
  return toPropertyListValue(value.get());
}

void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host) {
  // A null value removes the key.
  const auto list = value ? toCfPropertyList(*value) : CfRef<CFPropertyListRef>();
  CFPreferencesSetValue(toCfString(key).get(), list.get(), toCfString(application).get(),
                        name(user), name(host));
}

bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host) {
  return CFPreferencesSynchronize(toCfString(application).get(), name(user), name(host)) != 0;
}

}  // namespace platform
