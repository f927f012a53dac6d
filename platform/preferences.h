// The preferences service (CFPreferences). Main thread only.

#pragma once

#include <optional>
#include <string>

#include "platform/property_list.h"

namespace platform {

enum class PreferencesUser { current, any };
enum class PreferencesHost { current, any };

/// The value under `key` in the domain of exactly this application, user and
/// host; absent if there is none or it cannot be read.
std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host);

/// Sets the value under `key`, or removes the key if there is no value; other keys
/// stay as they are. It reaches the disk with synchronizePreferences() at the
/// latest.
void setPreferencesValue(const std::string& key, const std::optional<PropertyListValue>& value,
                         const std::string& application, PreferencesUser user,
                         PreferencesHost host);

/// Writes what has been set and takes in what others have written. Whether both
/// succeeded.
bool synchronizePreferences(const std::string& application, PreferencesUser user,
                            PreferencesHost host);

}  // namespace platform
