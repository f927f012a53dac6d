#include "inputsource/removal.h"

#include "inputsource/hitoolbox_lists.h"
#include "platform/common/property_list_lookups.h"

using platform::InputSource;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

namespace {

/// The list as it is, or no elements where something else is.
struct List {
  PropertyListArray elements;
  bool isDamaged = false;
};
List readList(const char* key) {
  const auto value = platform::copyPreferencesValue(key, kDomain, kUser, kHost);
  if (!value) return {};
  const auto* array = value->as<PropertyListArray>();
  return array ? List{*array} : List{{}, /*isDamaged=*/true};
}

}  // namespace

std::vector<InputSource> ownSources() {
  const TessalInstaller installer;
  std::vector<InputSource> sources;
  for (const auto mode : TessalInstaller::allCases)
    if (const auto source = installer.inputModeSource(mode, /*includeAllInstalled=*/true))
      sources.push_back(source);
  if (const auto base = installer.keyboardInputMethodSource(/*includeAllInstalled=*/true))
    sources.push_back(base);
  return sources;
}

int deselectAndDisable(const std::vector<InputSource>& sources) {
  int disabled = 0;
  for (const InputSource& source : sources) {
    platform::deselectInputSource(source);
    if (platform::disableInputSource(source) == platform::kNoError) ++disabled;
  }
  return disabled;
}

std::string entryBundleID() {
  return TessalInstaller().readInstalledBundleIdentifier().value_or(
      std::string(TessalInstaller::baseBundleID));
}

std::vector<ListedEntries> listedEntries(TessalInstaller::InputMode mode) {
  const std::string inputMode = TessalInstaller::rawValue(mode);
  const std::string bundleID = entryBundleID();
  const bool isReadable = platform::synchronizePreferences(kDomain, kUser, kHost);
  std::vector<ListedEntries> found;
  for (const auto& [key, place] : kLists) {
    const List list = readList(key);
    ListedEntries& entries = found.emplace_back();
    entries.list = key;
    entries.isDamaged = list.isDamaged || !isReadable;
    for (const PropertyListValue& element : list.elements) {
      const auto* entry = element.as<PropertyListDictionary>();
      if (!entry) {
        entries.isDamaged = true;
      } else if (platform::textIn(*entry, kInputModeKey) == inputMode) {
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

std::optional<int> removeOrvaneFromHIToolboxDefaults(const std::string& bundleID) {
  int removed = 0;
  for (const auto& [key, place] : kLists) {
    // What is not a dictionary stays: it is not ours to clean.
    PropertyListArray kept = readList(key).elements;
    const auto count = std::erase_if(kept, [&](const PropertyListValue& element) {
      const auto* entry = element.as<PropertyListDictionary>();
      const auto name = entry ? platform::textIn(*entry, kBundleIDKey) : std::nullopt;
      return name == bundleID || name == TessalInstaller::baseBundleID;
    });
    if (count == 0) continue;
    removed += static_cast<int>(count);
    platform::setPreferencesValue(key, kept, kDomain, kUser, kHost);
  }
  return platform::synchronizePreferences(kDomain, kUser, kHost) ? std::optional(removed)
                                                                 : std::nullopt;
}
