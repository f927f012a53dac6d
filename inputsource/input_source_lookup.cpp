#include <algorithm>
#include <set>

#include "inputsource/tessal_installer.h"

using platform::InputSource;
using platform::InputSourceFilter;
using platform::InputSourceProperty;

std::optional<std::string> TessalInstaller::getString(const InputSource& source,
                                                      InputSourceProperty key) {
  const auto value = platform::getInputSourceProperty(source, key);
  const auto* text = value ? value->as<std::string>() : nullptr;
  return text ? std::optional(*text) : std::nullopt;
}

std::optional<bool> TessalInstaller::getBool(const InputSource& source, InputSourceProperty key) {
  const auto value = platform::getInputSourceProperty(source, key);
  const auto* flag = value ? value->as<bool>() : nullptr;
  return flag ? std::optional(*flag) : std::nullopt;
}

std::vector<InputSource> TessalInstaller::allInputSources(bool includeAllInstalled) const {
  return platform::createInputSourceList(std::nullopt, includeAllInstalled)
      .value_or(std::vector<InputSource>());
}

std::map<TessalInstaller::InputMode, InputSource> TessalInstaller::getInputSource(
    const std::vector<InputMode>& modes, bool includeAllInstalled) const {
  std::optional<InputSourceFilter> filter;
  if (modes.size() == 1)
    filter = InputSourceFilter{InputSourceProperty::inputSourceID, rawValue(modes.front())};

  std::set<std::string> wanted;
  for (const InputMode mode : modes) wanted.insert(rawValue(mode));

  std::map<std::string, InputSource> sourceByID;
  const auto sources = platform::createInputSourceList(filter, includeAllInstalled)
                           .value_or(std::vector<InputSource>());
  for (const InputSource& source : sources) {
    const auto id = getString(source, InputSourceProperty::inputSourceID);
    if (!id || (!wanted.empty() && !wanted.contains(*id))) continue;
    sourceByID[*id] = source;  // the last of several wins
  }

  std::map<InputMode, InputSource> result;
  for (const InputMode mode : modes)
    if (const auto found = sourceByID.find(rawValue(mode)); found != sourceByID.end())
      result[mode] = found->second;
  return result;
}

InputSource TessalInstaller::keyboardInputMethodSource(bool includeAllInstalled) const {
  for (const InputSource& source : allInputSources(includeAllInstalled))
    if (getString(source, InputSourceProperty::bundleID) == baseBundleID &&
        getString(source, InputSourceProperty::inputSourceID) == baseBundleID)
      return source;
  return nullptr;
}

InputSource TessalInstaller::inputModeSource(InputMode mode, bool includeAllInstalled) const {
  const auto byID = getInputSource({mode}, includeAllInstalled);
  if (const auto found = byID.find(mode); found != byID.end()) return found->second;
  for (const InputSource& source : allInputSources(includeAllInstalled))
    if (getString(source, InputSourceProperty::inputModeID) == rawValue(mode)) return source;
  return nullptr;
}

bool TessalInstaller::isBaseEnabledBestEffort() const {
  const auto enabled = platform::createInputSourceList(
      InputSourceFilter{InputSourceProperty::isEnabled, true}, /*includeAllInstalled=*/false);
  if (enabled && std::any_of(enabled->begin(), enabled->end(), [](const InputSource& source) {
        return getString(source, InputSourceProperty::inputSourceID) == baseBundleID;
      }))
    return true;

  const InputSource base = keyboardInputMethodSource(/*includeAllInstalled=*/true);
  return base && getBool(base, InputSourceProperty::isEnabled) == true;
}

std::vector<TessalInstaller::InputMode> TessalInstaller::enabledModes() const {
  std::vector<InputMode> enabled;
  for (const auto& [mode, source] :
       getInputSource({allCases.begin(), allCases.end()}, /*includeAllInstalled=*/false))
    if (getBool(source, InputSourceProperty::isEnabled) == true) enabled.push_back(mode);
  return enabled;
}

bool TessalInstaller::isSelected(InputMode mode) const {
  const InputSource current = platform::copyCurrentKeyboardInputSource();
  if (!current) return false;
  return getString(current, InputSourceProperty::inputModeID) == rawValue(mode) ||
         getString(current, InputSourceProperty::inputSourceID) == rawValue(mode);
}
