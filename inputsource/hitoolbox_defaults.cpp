#include <algorithm>
#include <array>
#include <utility>

#include "inputsource/tessal_installer.h"
#include "platform/common/property_list_lookups.h"

using platform::OpaqueValue;
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

/// The list under this key as it stands, or no elements where something else stands.
struct List {
  PropertyListArray elements;
  bool isDamaged = false;
};
List readList(const std::string& key, const std::string& appID = kDomain,
              PreferencesUser user = PreferencesUser::current,
              PreferencesHost host = PreferencesHost::current) {
  const auto value = platform::copyPreferencesValue(key, appID, user, host);
  if (!value) return {};
  const auto* array = value->as<PropertyListArray>();
  return array ? List{*array} : List{{}, /*isDamaged=*/true};
}

void writeList(const std::string& key, const PropertyListArray& elements) {
  platform::setPreferencesValue(key, elements, kDomain, PreferencesUser::current,
                                PreferencesHost::current);
}

bool synchronizeLists() {
  return platform::synchronizePreferences(kDomain, PreferencesUser::current,
                                          PreferencesHost::current);
}

bool holdsText(const PropertyListDictionary& entry, const char* key, const std::string& text) {
  return platform::textIn(entry, key) == text;
}

}  // namespace

std::vector<PropertyListDictionary> TessalInstaller::readCFArrayOfDicts(const std::string& appID,
                                                                        const std::string& key,
                                                                        PreferencesUser user,
                                                                        PreferencesHost host) {
  const PropertyListArray elements = readList(key, appID, user, host).elements;
  const bool onlyDictionaries = std::ranges::all_of(elements, [](const PropertyListValue& element) {
    const auto* opaque = element.as<OpaqueValue>();
    return element.as<PropertyListDictionary>() || (opaque && opaque->isDictionary);
  });
  std::vector<PropertyListDictionary> entries;
  for (const PropertyListValue& element : elements) {
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
    writeList(key, PropertyListArray(entries.begin(), entries.end()));
  }
  synchronizeLists();
  return true;
}

std::string TessalInstaller::entryBundleID() const {
  return readInstalledBundleIdentifier().value_or(std::string(kBaseBundleID));
}

std::vector<TessalInstaller::ListedEntries> TessalInstaller::listedEntries(InputMode mode) const {
  const std::string bundleID = entryBundleID();
  std::vector<ListedEntries> found;
  for (const auto& [key, position] : kLists) {
    const List list = readList(key);
    ListedEntries& entries = found.emplace_back();
    entries.list = key;
    entries.isDamaged = list.isDamaged;
    for (const PropertyListValue& element : list.elements) {
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

std::optional<int> TessalInstaller::removeOrvaneFromHIToolboxDefaults(
    const std::string& bundleID) const {
  int removed = 0;
  for (const auto& [key, position] : kLists) {
    // The list as it is, with what is no dictionary in it: that is not ours to clean.
    PropertyListArray kept = readList(key).elements;
    const auto count = std::erase_if(kept, [&](const PropertyListValue& element) {
      const auto* entry = element.as<PropertyListDictionary>();
      return entry && (holdsText(*entry, kBundleIDKey, bundleID) ||
                       holdsText(*entry, kBundleIDKey, std::string(kBaseBundleID)));
    });
    if (count == 0) continue;
    removed += static_cast<int>(count);
    writeList(key, kept);
  }
  return synchronizeLists() ? std::optional(removed) : std::nullopt;
}
