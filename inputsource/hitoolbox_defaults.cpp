#include <algorithm>
#include <array>
#include <utility>

#include "inputsource/tessal_installer.h"
#include "platform/common/property_list_lookups.h"

using platform::ForeignKeyDictionary;
using platform::PreferencesHost;
using platform::PreferencesUser;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

namespace {

constexpr const char* kDomain = "com.apple.HIToolbox";
enum class Position { front, back };
constexpr std::array<std::pair<const char*, Position>, 3> kLists = {{
    {"AppleEnabledInputSources", Position::back},
    {"AppleSelectedInputSources", Position::front},
    {"AppleInputSourceHistory", Position::front},
}};

constexpr const char* kBundleIDKey = "Bundle ID";
constexpr const char* kInputModeKey = "Input Mode";
constexpr const char* kInputSourceKindKey = "InputSourceKind";
constexpr const char* kInputModeKind = "Input Mode";

bool holdsText(const PropertyListDictionary& entry, const char* key, const std::string& text) {
  return platform::textIn(entry, key) == text;
}

}  // namespace

std::vector<PropertyListDictionary> TessalInstaller::readCFArrayOfDicts(const std::string& appID,
                                                                        const std::string& key,
                                                                        PreferencesUser user,
                                                                        PreferencesHost host) {
  const auto value = platform::copyPreferencesValue(key, appID, user, host);
  const auto* array = value ? value->as<PropertyListArray>() : nullptr;
  if (!array) return {};

  const bool onlyDictionaries = std::all_of(array->begin(), array->end(), [](const auto& element) {
    return element.template as<PropertyListDictionary>() ||
           element.template as<ForeignKeyDictionary>();
  });
  std::vector<PropertyListDictionary> entries;
  for (const PropertyListValue& element : *array) {
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
  return std::any_of(entries.begin(), entries.end(), [&](const PropertyListDictionary& entry) {
    return holdsText(entry, kBundleIDKey, bundleID) && holdsText(entry, kInputModeKey, inputMode);
  });
}

bool TessalInstaller::ensureOrvaneEnabledInHIToolboxDefaults(InputMode mode) const {
  const std::string bundleID = entryBundleID();
  const std::string inputMode = rawValue(mode);
  const PropertyListDictionary entry = {
      {kBundleIDKey, bundleID}, {kInputModeKey, inputMode}, {kInputSourceKindKey, kInputModeKind}};

  for (const auto& [key, position] : kLists) {
    auto entries =
        readCFArrayOfDicts(kDomain, key, PreferencesUser::current, PreferencesHost::current);
    if (containsInputModeEntry(entries, bundleID, inputMode)) continue;
    entries.insert(position == Position::front ? entries.begin() : entries.end(), entry);
    platform::setPreferencesValue(key, PropertyListArray(entries.begin(), entries.end()), kDomain,
                                  PreferencesUser::current, PreferencesHost::current);
  }
  platform::synchronizePreferences(kDomain, PreferencesUser::current, PreferencesHost::current);
  return true;
}

std::string TessalInstaller::entryBundleID() const {
  return readInstalledBundleIdentifier().value_or(std::string(kBaseBundleID));
}

std::vector<TessalInstaller::ListedEntries> TessalInstaller::listedEntries(InputMode mode) const {
  const std::string bundleID = entryBundleID();
  std::vector<ListedEntries> found;
  for (const auto& [key, position] : kLists) {
    ListedEntries& entries = found.emplace_back();
    entries.list = key;
    const auto value = platform::copyPreferencesValue(key, kDomain, PreferencesUser::current,
                                                      PreferencesHost::current);
    const auto* array = value ? value->as<PropertyListArray>() : nullptr;
    entries.isDamaged = value && !array;
    for (const PropertyListValue& element : array ? *array : PropertyListArray()) {
      const auto* entry = element.as<PropertyListDictionary>();
      if (!entry) {
        entries.isDamaged = true;
      } else if (holdsText(*entry, kInputModeKey, rawValue(mode))) {
        const auto name = platform::textIn(*entry, kBundleIDKey);
        if (name == bundleID)
          ++entries.own;
        else
          entries.foreign.push_back(name.value_or(""));
      }
    }
  }
  return found;
}

int TessalInstaller::removeOrvaneFromHIToolboxDefaults(const std::string& bundleID) const {
  int removed = 0;
  for (const auto& [key, position] : kLists) {
    const auto value = platform::copyPreferencesValue(key, kDomain, PreferencesUser::current,
                                                      PreferencesHost::current);
    const auto* array = value ? value->as<PropertyListArray>() : nullptr;
    if (!array) continue;
    // The list as it is, with what is no dictionary in it: that is not ours to clean.
    PropertyListArray kept = *array;
    const auto count = std::erase_if(kept, [&](const PropertyListValue& element) {
      const auto* entry = element.as<PropertyListDictionary>();
      return entry && (holdsText(*entry, kBundleIDKey, bundleID) ||
                       holdsText(*entry, kBundleIDKey, std::string(kBaseBundleID)));
    });
    if (count == 0) continue;
    removed += static_cast<int>(count);
    platform::setPreferencesValue(key, kept, kDomain, PreferencesUser::current,
                                  PreferencesHost::current);
  }
  platform::synchronizePreferences(kDomain, PreferencesUser::current, PreferencesHost::current);
  return removed;
}
