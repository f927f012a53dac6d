// The three lists of input sources in the user's preferences.

#pragma once

#include <array>
#include <string>

#include "platform/common/property_list_lookups.h"
#include "platform/preferences.h"

namespace hitoolbox {

inline constexpr const char* kDomain = "com.apple.HIToolbox";
inline constexpr auto kUser = platform::PreferencesUser::current;
inline constexpr auto kHost = platform::PreferencesHost::current;

struct ListKey {
  const char* name;
  /// Where an entry goes that is missing.
  enum { front, back } place;
};
inline constexpr std::array kLists = {ListKey{"AppleEnabledInputSources", ListKey::back},
                                      ListKey{"AppleSelectedInputSources", ListKey::front},
                                      ListKey{"AppleInputSourceHistory", ListKey::front}};

// Keys of an entry.
inline constexpr const char* kBundleID = "Bundle ID";
inline constexpr const char* kInputMode = "Input Mode";

inline bool holdsText(const platform::PropertyListDictionary& entry, const char* key,
                      const std::string& text) {
  return platform::textIn(entry, key) == text;
}

inline void writeList(const char* key, const platform::PropertyListArray& elements) {
  platform::setPreferencesValue(key, elements, kDomain, kUser, kHost);
}

/// Whether what has been written is stored.
inline bool synchronizeLists() {
  return platform::synchronizePreferences(kDomain, kUser, kHost);
}

}  // namespace hitoolbox
