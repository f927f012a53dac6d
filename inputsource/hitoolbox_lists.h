// The three lists of input sources in the user's preferences.

#pragma once

#include <array>

#include "platform/preferences.h"

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
inline constexpr const char* kBundleIDKey = "Bundle ID";
inline constexpr const char* kInputModeKey = "Input Mode";
