#include "platform/text_input_sources.h"

#include <algorithm>
#include <utility>

#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/linux/detached_process.h"
#include "platform/linux/environment.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_service.h"
#include "platform/linux/input_source_state.h"

namespace platform {

namespace {

using linux_::changeInputSourceState;
using linux_::InputSourceState;
using linux_::kBuiltInLayoutId;

std::filesystem::path inputMethodsFolder() {
  return onDisk("/Library/Input Methods");
}

/// The sources that an information dictionary declares: the base source first.
std::vector<InputSourceObject> declaredSources(const PropertyListDictionary& info) {
  const auto bundleId = textIn(info, "CFBundleIdentifier");
  if (!bundleId) return {};
  InputSourceObject base;
  base.id = *bundleId;
  base.bundleId = *bundleId;
  base.name = textIn(info, "CFBundleDisplayName")
                  .value_or(textIn(info, "CFBundleName").value_or(*bundleId));

  std::vector<InputSourceObject> sources{base};
  const auto* modes =
      dictionaryIn(dictionaryIn(&info, "ComponentInputModeDict"), "tsInputModeListKey");
  for (const auto& [modeId, value] : modes ? *modes : PropertyListDictionary()) {
    const auto* declared = value.as<PropertyListDictionary>();
    if (!declared) continue;
    InputSourceObject mode = base;
    mode.id = textIn(*declared, "TISInputSourceID").value_or(modeId);
    mode.modeId = modeId;
    mode.name = base.name + " – " + modeId.substr(modeId.rfind('.') + 1);
    mode.isSelectCapable = true;
    sources.push_back(std::move(mode));
  }
  // The user types with a mode, if there is one.
  sources.front().isSelectCapable = sources.size() == 1;
  return sources;
}

std::vector<InputSourceObject> sourcesOf(const InputSourceState& state) {
  InputSourceObject layout;
  layout.id = kBuiltInLayoutId;
  layout.bundleId = "com.apple.keyboardlayout.all";
  layout.name = "ABC";
  layout.isSelectCapable = layout.isEnabled = true;

  std::vector<InputSourceObject> sources{layout};
  for (const auto& bundle : state.registered) {
    const auto info =
        readPropertyListDictionary(inputMethodsFolder() / bundle / "Contents" / "Info.plist");
    for (auto& source : info ? declaredSources(*info) : std::vector<InputSourceObject>()) {
      source.isEnabled = state.enabled.contains(source.id);
      source.isAsked = state.asked.contains(source.bundleId);
      sources.push_back(std::move(source));
    }
  }
  const auto current = std::ranges::find_if(
      sources, [&](const auto& source) { return source.id == state.current && source.isEnabled; });
  (current != sources.end() ? *current : sources.front()).isCurrent = true;
  return sources;
}

InputSource find(const std::string& id, const InputSourceState& state) {
  for (auto& source : sourcesOf(state))
    if (source.id == id) return std::make_shared<const InputSourceObject>(std::move(source));
  return nullptr;
}

/// Enables or disables a base source with its modes.
void setAllEnabled(InputSourceState& state, const std::string& bundleId, bool isEnabled) {
  for (const auto& source : sourcesOf(state)) {
    if (source.bundleId != bundleId) continue;
    if (isEnabled)
      state.enabled.insert(source.id);
    else
      state.enabled.erase(source.id);
  }
}

/// Runs `block` each time `read` returns something new, until the result is destroyed.
Observation follow(auto read, Block block) {
  auto look = [read, seen = read(), block = std::move(block)]() mutable {
    const auto before = std::exchange(seen, read());
    if (seen != before) block();
  };
  auto timer = std::make_shared<std::unique_ptr<Timer>>();
  // A timer needs the main loop. What changes before it runs is seen then.
  asyncOnMain([weak = std::weak_ptr(timer), look = std::move(look)] {
    if (const auto observed = weak.lock()) *observed = scheduleTimer(Seconds(0.2), look);
  });
  return timer;
}

/// Asks the user about this bundle, in a window of another process, if there is a display.
void startAgent(const std::string& bundleId) {
  if (!linux_::hasDisplay()) return;
  auto arguments = linux_::rootArguments();
  arguments.push_back(bundleId);
  linux_::startDetached(bundleLocation() / "Contents/Helpers/input-source-agent", arguments);
}

}  // namespace

std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled) {
  std::vector<InputSource> sources;
  for (auto& object : sourcesOf(linux_::readInputSourceState())) {
    if (!object.isEnabled && !includeAllInstalled) continue;
    const auto source = std::make_shared<const InputSourceObject>(std::move(object));
    if (!filter || getInputSourceProperty(source, filter->property) == filter->value)
      sources.push_back(source);
  }
  return sources;
}

std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property) {
  switch (property) {
    case InputSourceProperty::bundleID:
      return source->bundleId;
    case InputSourceProperty::inputSourceID:
      return source->id;
    case InputSourceProperty::inputModeID:
      return source->modeId ? std::optional<PropertyListValue>(*source->modeId) : std::nullopt;
    case InputSourceProperty::isEnabled: {
      // Another process may have changed it since the source was listed.
      const auto now = linux_::findInputSource(source->id);
      return now && now->isEnabled;
    }
    case InputSourceProperty::isSelectCapable:
      return source->isSelectCapable;
  }
  return std::nullopt;
}

InputSource copyCurrentKeyboardInputSource() {
  const auto sources = linux_::installedInputSources();
  return *std::ranges::find_if(sources, [](const auto& source) { return source->isCurrent; });
}

Status registerInputSource(const std::filesystem::path& bundle) {
  const auto info = readPropertyListDictionary(bundle / "Contents" / "Info.plist");
  if (!info) return kParameterError;
  if (bundle.parent_path() != inputMethodsFolder()) return kParameterError;
  const std::string id = textIn(*info, "CFBundleIdentifier").value_or("");
  // A bundle without this component is not an input method, and is ignored.
  if (("." + id + ".").find(".inputmethod.") == std::string::npos) return kNoError;
  return changeInputSourceState([&](InputSourceState& state) {
    state.registered.insert(bundle.filename().string());
    return kNoError;
  });
}

Status enableInputSource(const InputSource& source) {
  bool hasToAsk = false;
  const Status status = changeInputSourceState([&](InputSourceState& state) {
    const auto now = find(source->id, state);
    if (!now) return kParameterError;
    hasToAsk = !state.allowed.contains(now->bundleId);
    if (hasToAsk)
      state.asked.insert(now->bundleId);
    else if (now->modeId)
      state.enabled.insert(now->id);
    else
      setAllEnabled(state, now->bundleId, true);
    return kNoError;
  });
  if (status == kNoError && hasToAsk) startAgent(source->bundleId);
  return status;
}

Status disableInputSource(const InputSource& source) {
  if (source->id == kBuiltInLayoutId) return kParameterError;
  return changeInputSourceState([&](InputSourceState& state) {
    state.enabled.erase(source->id);
    // The user's answer is forgotten with the bundle.
    if (!find(source->id, state)) {
      state.allowed.erase(source->bundleId);
      state.asked.erase(source->bundleId);
    }
    return kNoError;
  });
}

Status selectInputSource(const InputSource& source) {
  return changeInputSourceState([&](InputSourceState& state) {
    const auto now = find(source->id, state);
    if (!now || !now->isEnabled || !now->isSelectCapable) return kParameterError;
    state.current = now->id;
    return kNoError;
  });
}

Status deselectInputSource(const InputSource& /*source*/) {
  return kNoError;  // a source is current until another one is selected
}

Observation observeEnabledInputSourcesChanged(Block block) {
  return follow([] { return linux_::readInputSourceState().enabled; }, std::move(block));
}

namespace linux_ {

std::vector<InputSource> installedInputSources() {
  return *createInputSourceList(std::nullopt, /*includeAllInstalled=*/true);
}

InputSource findInputSource(const std::string& id) {
  return find(id, readInputSourceState());
}

Status answerForUser(const InputSource& source, bool isAllowed) {
  return changeInputSourceState([&](InputSourceState& state) {
    state.asked.erase(source->bundleId);
    state.allowed.erase(source->bundleId);
    if (isAllowed) state.allowed.insert(source->bundleId);
    setAllEnabled(state, source->bundleId, isAllowed);
    return kNoError;
  });
}

Observation observeInputSources(Block block) {
  return follow(readInputSourceState, std::move(block));
}

}  // namespace linux_
}  // namespace platform
