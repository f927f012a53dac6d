#pragma once

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/preferences.h"
#include "platform/text_input_sources.h"

/// The installer's whole layer over the Text Input Sources service. It keeps no
/// state: make one where it is needed and drop it. Main thread only. Nothing is
/// cached and nothing throws; a failure of the service reads as not found, not
/// enabled or not selected.
///
/// `BestEffort` in a name: the operation tries once, tolerates every failure and
/// passes on what the service says; the caller only logs it.
class TessalInstaller {
 public:
  /// A mode of the input method.
  enum class InputMode { pinyin };
  static constexpr std::array allCases = {InputMode::pinyin};
  /// The mode's source identifier, mode identifier and preferences entry.
  static std::string rawValue(InputMode mode);
  /// The mode of exactly this raw value, else absent.
  static std::optional<InputMode> modeFromRawValue(std::string_view rawValue);

  /// Bundle identifier of the input method, and identifier of its base source.
  static constexpr std::string_view baseBundleID = "com.tessal.inputmethod.Orvane";

  // Identities (input_method_identity.cpp).
  /// The install location "/Library/Input Methods/Orvane.app".
  static const std::filesystem::path& appDir();
  /// Whether anything at all lies at the install location.
  bool isInstalled() const;
  /// The information dictionary of the installed bundle; absent if it has none
  /// that can be read.
  std::optional<platform::PropertyListDictionary> installedInfo() const;
  /// The bundle identifier that the installed bundle declares; absent if it declares none.
  std::optional<std::string> readInstalledBundleIdentifier() const;
  /// The settings application inside the installed bundle; absent if it has none.
  std::optional<std::filesystem::path> bundledSettingsApplication() const;
  /// A settings application that the system knows from elsewhere.
  std::optional<std::filesystem::path> otherSettingsApplication() const;

  // Lookups (input_source_lookup.cpp).
  std::vector<platform::InputSource> allInputSources(bool includeAllInstalled) const;
  /// The base source: both identifiers are baseBundleID; null if there is none.
  platform::InputSource keyboardInputMethodSource(bool includeAllInstalled) const;
  /// The source of a mode, by source identifier or else by mode identifier; null
  /// if there is none.
  platform::InputSource inputModeSource(InputMode mode, bool includeAllInstalled) const;
  bool isBaseEnabledBestEffort() const;
  std::vector<InputMode> enabledModes() const;
  /// Whether the mode is the current keyboard input source.
  bool isSelected(InputMode mode) const;

  // Actions (input_source_actions.cpp).
  void registerBundle() const;
  void enable(std::vector<InputMode> modes = {}) const;
  void disable(std::vector<InputMode> modes) const;
  /// No mode means kDefaultMode. Selects the base source if the mode has no source.
  void select(std::optional<InputMode> mode) const;
  /// Whether a select call succeeded.
  bool selectModeForOverwrite(InputMode mode) const;
  /// The status of the one call made, or absent if there is no such source.
  std::optional<platform::Status> enableBaseKeyboardInputMethodBestEffort() const;
  std::optional<platform::Status> disableBaseKeyboardInputMethodBestEffort() const;
  std::optional<platform::Status> enableInputModeBestEffort(InputMode mode) const;
  /// One status for each mode that has a source, in the order of `modes`.
  std::vector<platform::Status> disableInputModesBestEffort(
      const std::vector<InputMode>& modes) const;

  // Preferences (hitoolbox_defaults.cpp).
  /// Adds the mode's entry to the user's three input-source lists where it is
  /// missing. Always true.
  bool ensureOrvaneEnabledInHIToolboxDefaults(InputMode mode) const;

 private:
  /// The property's value if it is a string, else absent.
  static std::optional<std::string> getString(const platform::InputSource& source,
                                              platform::InputSourceProperty key);
  /// The property's value if it is a boolean, else absent: a number is not a boolean.
  static std::optional<bool> getBool(const platform::InputSource& source,
                                     platform::InputSourceProperty key);
  std::map<InputMode, platform::InputSource> getInputSource(const std::vector<InputMode>& modes,
                                                            bool includeAllInstalled) const;
  static std::vector<platform::PropertyListDictionary> readCFArrayOfDicts(
      const std::string& appID, const std::string& key, platform::PreferencesUser user,
      platform::PreferencesHost host);
  static bool containsInputModeEntry(const std::vector<platform::PropertyListDictionary>& entries,
                                     const std::string& bundleID, const std::string& inputMode);
};

/// The mode that an installation selects.
inline constexpr TessalInstaller::InputMode kDefaultMode = TessalInstaller::InputMode::pinyin;
