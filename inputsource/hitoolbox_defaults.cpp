#include <algorithm>

#include "inputsource/hitoolbox_lists.h"
#include "inputsource/tessal_installer.h"
#include "platform/common/property_list_lookups.h"

using platform::OpaqueValue;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

std::vector<PropertyListDictionary> TessalInstaller::readCFArrayOfDicts(
    const std::string& appID, const std::string& key, platform::PreferencesUser user,
    platform::PreferencesHost host) {
  const auto value = platform::copyPreferencesValue(key, appID, user, host);
  const auto* const elements = value ? value->as<PropertyListArray>() : nullptr;
  if (!elements) return {};
  const bool onlyDictionaries =
      std::ranges::all_of(*elements, [](const PropertyListValue& element) {
        const auto* opaque = element.as<OpaqueValue>();
        return element.as<PropertyListDictionary>() || (opaque && opaque->isDictionary);
      });
  std::vector<PropertyListDictionary> entries;
  for (const PropertyListValue& element : *elements) {
    if (const auto* entry = element.as<PropertyListDictionary>())
      entries.push_back(*entry);
    else if (onlyDictionaries)
      entries.emplace_back();  // one with other keys than strings keeps its place, empty
  }
  return entries;
}

bool TessalInstaller::containsInputModeEntry(const std::vector<PropertyListDictionary>& entries,
                                             const std::string& bundleID,
                                             const std::string& inputMode) {
  return std::ranges::any_of(entries, [&](const PropertyListDictionary& entry) {
    return platform::textIn(entry, kBundleIDKey) == bundleID &&
           platform::textIn(entry, kInputModeKey) == inputMode;
  });
}

bool TessalInstaller::ensureOrvaneEnabledInHIToolboxDefaults(InputMode mode) const {
  const std::string bundleID = readInstalledBundleIdentifier().value_or(std::string(baseBundleID));
  const std::string inputMode = rawValue(mode);
  const PropertyListDictionary entry = {
      {kBundleIDKey, bundleID}, {kInputModeKey, inputMode}, {"InputSourceKind", "Input Mode"}};

  for (const auto& [key, place] : kLists) {
    auto entries = readCFArrayOfDicts(kDomain, key, kUser, kHost);
    if (containsInputModeEntry(entries, bundleID, inputMode)) continue;
    entries.insert(place == ListKey::front ? entries.begin() : entries.end(), entry);
    platform::setPreferencesValue(key, PropertyListArray(entries.begin(), entries.end()), kDomain,
                                  kUser, kHost);
  }
  platform::synchronizePreferences(kDomain, kUser, kHost);
  return true;
}
