// The Text Input Sources service. Main thread only.
// https://developer.apple.com/documentation/carbon/text_input_sources

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/handler_list.h"
#include "platform/main_queue.h"
#include "platform/property_list.h"

namespace platform {

/// A signed 32-bit status (OSStatus).
using Status = std::int32_t;
inline constexpr Status kNoError = 0;
inline constexpr Status kParameterError = -50;

/// A reference to one input source (TISInputSourceRef); the holder owns it.
struct InputSourceObject;
using InputSource = std::shared_ptr<const InputSourceObject>;

/// The property keys kTISProperty…
enum class InputSourceProperty {
  bundleID,
  inputSourceID,
  inputModeID,
  isEnabled,
  isSelectCapable,
};

/// Lists only sources that have this value in this property.
struct InputSourceFilter {
  InputSourceProperty property;
  PropertyListValue value;
};

/// TISCreateInputSourceList: the enabled sources or, with `includeAllInstalled`,
/// every installed one, in the service's order. Absent if the service answers
/// no list.
std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled);

/// TISGetInputSourceProperty: the value now, of whatever type the service has it
/// in; absent if the source lacks it.
std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property);

/// TISCopyCurrentKeyboardInputSource: null if there is none.
InputSource copyCurrentKeyboardInputSource();

/// TISRegisterInputSource: makes the sources of the bundle at this path known.
Status registerInputSource(const std::filesystem::path& bundle);

/// TISEnableInputSource. For an input method that the user has not allowed yet
/// this answers at once and the system asks the user.
Status enableInputSource(const InputSource& source);
/// TISDisableInputSource.
Status disableInputSource(const InputSource& source);
/// TISSelectInputSource: makes the source the current one.
Status selectInputSource(const InputSource& source);
/// TISDeselectInputSource.
Status deselectInputSource(const InputSource& source);

/// Name of the notification that follows a change of the enabled set.
inline constexpr const char* kNotifyEnabledKeyboardInputSourcesChanged =
    "kTISNotifyEnabledKeyboardInputSourcesChanged";

/// Runs `block` on the main queue each time any process has changed the set of
/// enabled sources, until the result is destroyed. Never null.
[[nodiscard]] Observation observeEnabledInputSourcesChanged(Block block);

}  // namespace platform
