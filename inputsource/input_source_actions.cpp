#include "inputsource/tessal_installer.h"
#include "platform/file_root.h"

using platform::InputSource;
using platform::InputSourceProperty;
using platform::Status;

namespace {

/// Deselects the source and then selects it. The service ignores a selection of a
/// source that it believes to be selected already; the first call prevents that.
Status reselect(const InputSource& source) {
  platform::deselectInputSource(source);
  return platform::selectInputSource(source);
}

std::optional<Status> statusOf(Status (*action)(const InputSource&), const InputSource& source) {
  if (!source) return std::nullopt;
  return action(source);
}

}  // namespace

void TessalInstaller::registerBundle() const {
  platform::registerInputSource(platform::onDisk(appDir()));
}

void TessalInstaller::enable(std::vector<InputMode> modes) const {
  if (modes.empty()) modes.assign(allCases.begin(), allCases.end());
  if (const InputSource base = keyboardInputMethodSource(/*includeAllInstalled=*/true))
    platform::enableInputSource(base);

  const auto enabled = getInputSource(modes, /*includeAllInstalled=*/false);
  for (const InputMode mode : modes) {
    if (enabled.contains(mode)) continue;
    if (const InputSource source = inputModeSource(mode, /*includeAllInstalled=*/true))
      platform::enableInputSource(source);
  }
}

void TessalInstaller::disable(std::vector<InputMode> modes) const {
  if (modes.empty()) modes.assign(allCases.begin(), allCases.end());
  for (const auto& [mode, source] : getInputSource(modes, /*includeAllInstalled=*/false))
    if (getBool(source, InputSourceProperty::isEnabled) == true)
      platform::disableInputSource(source);
}

void TessalInstaller::select(std::optional<InputMode> requested) const {
  const InputMode mode = requested.value_or(kDefaultMode);
  auto found = getInputSource({mode}, /*includeAllInstalled=*/false);
  if (found.empty()) {
    enable({mode});
    found = getInputSource({mode}, /*includeAllInstalled=*/false);
    if (found.empty()) found = getInputSource({mode}, /*includeAllInstalled=*/true);
  }

  InputSource source = found.empty() ? nullptr : found.begin()->second;
  if (!source) source = inputModeSource(mode, /*includeAllInstalled=*/true);
  if (!source) source = keyboardInputMethodSource(/*includeAllInstalled=*/true);
  if (source) reselect(source);
}

bool TessalInstaller::selectModeForOverwrite(InputMode mode) const {
  const InputSource source = inputModeSource(mode, /*includeAllInstalled=*/true);
  if (!source) return false;
  if (getBool(source, InputSourceProperty::isSelectCapable) != true) return false;
  if (reselect(source) == platform::kNoError) return true;
  if (getBool(source, InputSourceProperty::isEnabled) != true) platform::enableInputSource(source);
  return reselect(source) == platform::kNoError;
}

std::optional<Status> TessalInstaller::enableBaseKeyboardInputMethodBestEffort() const {
  return statusOf(platform::enableInputSource,
                  keyboardInputMethodSource(/*includeAllInstalled=*/true));
}

std::optional<Status> TessalInstaller::disableBaseKeyboardInputMethodBestEffort() const {
  return statusOf(platform::disableInputSource,
                  keyboardInputMethodSource(/*includeAllInstalled=*/true));
}

std::optional<Status> TessalInstaller::enableInputModeBestEffort(InputMode mode) const {
  return statusOf(platform::enableInputSource, inputModeSource(mode, /*includeAllInstalled=*/true));
}

std::vector<Status> TessalInstaller::disableInputModesBestEffort(
    const std::vector<InputMode>& modes) const {
  std::vector<Status> statuses;
  for (const InputMode mode : modes)
    if (const auto status = statusOf(platform::disableInputSource,
                                     inputModeSource(mode, /*includeAllInstalled=*/true)))
      statuses.push_back(*status);
  return statuses;
}
