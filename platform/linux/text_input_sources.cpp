#include "platform/text_input_sources.h"

#include <utility>

#include "platform/linux/input_source_service.h"
#include "platform/linux/input_source_state.h"

namespace platform {

struct InputSourceObject {
  linux_::InputSourceInfo info;
};

namespace {

InputSource reference(linux_::InputSourceInfo info) {
  return std::make_shared<const InputSourceObject>(InputSourceObject{std::move(info)});
}

}  // namespace

std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled) {
  std::vector<InputSource> sources;
  for (auto& info : linux_::installedInputSources()) {
    if (!info.isEnabled && !includeAllInstalled) continue;
    auto source = reference(std::move(info));
    if (!filter || getInputSourceProperty(source, filter->property) == filter->value) {
      sources.push_back(std::move(source));
    }
  }
  return sources;
}

std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property) {
  if (!source) return std::nullopt;
  switch (property) {
    case InputSourceProperty::bundleID:
      return source->info.bundleId;
    case InputSourceProperty::inputSourceID:
      return source->info.id;
    case InputSourceProperty::inputModeID:
      if (source->info.modeId) return *source->info.modeId;
      return std::nullopt;
    case InputSourceProperty::isEnabled: {
      // Another process may have changed it since the source was listed.
      const auto now = linux_::findInputSource(source->info.id);
      return now && now->isEnabled;
    }
    case InputSourceProperty::isSelectCapable:
      return source->info.isSelectCapable;
  }
  return std::nullopt;
}

InputSource copyCurrentKeyboardInputSource() {
  for (auto& info : linux_::installedInputSources()) {
    if (info.isCurrent) return reference(std::move(info));
  }
  return nullptr;
}

Status registerInputSource(const std::filesystem::path& bundle) {
  return linux_::registerInputMethod(bundle);
}

Status enableInputSource(const InputSource& source) {
  return source ? linux_::enableInputSource(source->info.id) : kParameterError;
}

Status disableInputSource(const InputSource& source) {
  return source ? linux_::disableInputSource(source->info.id) : kParameterError;
}

Status selectInputSource(const InputSource& source) {
  return source ? linux_::selectInputSource(source->info.id) : kParameterError;
}

Status deselectInputSource(const InputSource& source) {
  // A keyboard source leaves only when another one is selected.
  return source ? kNoError : kParameterError;
}

Observation observeEnabledInputSourcesChanged(Block block) {
  return linux_::observeInputSources(linux_::WatchedState::enabledSources, std::move(block));
}

}  // namespace platform
