#include "platform/linux/input_source_service.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "platform/bundle.h"
#include "platform/common/property_list_lookups.h"
#include "platform/linux/detached_process.h"
#include "platform/linux/environment.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/input_source_state.h"
#include "platform/linux/status.h"

namespace platform::linux_ {

namespace {

namespace fs = std::filesystem;

fs::path inputMethodsFolder() {
  return onDisk("/Library/Input Methods");
}

/// The sources that an information dictionary declares: the base source first.
std::vector<InputSourceInfo> declaredSources(const PropertyListDictionary& info) {
  const auto bundleId = textIn(info, "CFBundleIdentifier");
  if (!bundleId) return {};
  InputSourceInfo base;
  base.id = *bundleId;
  base.bundleId = *bundleId;
  base.name = textIn(info, "CFBundleDisplayName")
                  .value_or(textIn(info, "CFBundleName").value_or(*bundleId));

  std::vector<InputSourceInfo> sources{base};
  const auto* modes =
      dictionaryIn(dictionaryIn(&info, "ComponentInputModeDict"), "tsInputModeListKey");
  for (const auto& [modeId, value] : modes ? *modes : PropertyListDictionary()) {
    const auto* declared = value.as<PropertyListDictionary>();
    if (!declared) continue;
    InputSourceInfo mode = base;
    mode.id = textIn(*declared, "TISInputSourceID").value_or(modeId);
    mode.modeId = modeId;
    mode.name = base.name + " – " + modeId.substr(modeId.rfind('.') + 1);
    mode.isSelectCapable = true;
    sources.push_back(std::move(mode));
  }
  // With modes, it is they that the user types with.
  sources.front().isSelectCapable = sources.size() == 1;
  return sources;
}

std::vector<InputSourceInfo> sourcesOf(const InputSourceState& state) {
  InputSourceInfo layout;
  layout.id = kBuiltInLayoutId;
  layout.bundleId = "com.apple.keyboardlayout.all";
  layout.name = "ABC";
  layout.isSelectCapable = layout.isEnabled = layout.isAllowed = true;

  std::vector<InputSourceInfo> sources{layout};
  for (const auto& bundle : state.registered) {
    const auto info =
        readPropertyListDictionary(inputMethodsFolder() / bundle / "Contents" / "Info.plist");
    for (auto& source : info ? declaredSources(*info) : std::vector<InputSourceInfo>()) {
      source.isEnabled = state.enabled.contains(source.id);
      source.isAllowed = state.allowed.contains(source.bundleId);
      source.isAsked = state.asked.contains(source.bundleId);
      sources.push_back(std::move(source));
    }
  }
  const auto current = std::find_if(sources.begin(), sources.end(), [&](const auto& source) {
    return source.id == state.current && source.isEnabled;
  });
  (current != sources.end() ? *current : sources.front()).isCurrent = true;
  return sources;
}

std::optional<InputSourceInfo> find(const std::string& id, const InputSourceState& state) {
  for (auto& source : sourcesOf(state)) {
    if (source.id == id) return std::move(source);
  }
  return std::nullopt;
}

/// The source if it is of a bundle, so that the user's permission is needed.
std::optional<InputSourceInfo> findInBundle(const std::string& id, const InputSourceState& state) {
  return id == kBuiltInLayoutId ? std::nullopt : find(id, state);
}

void setEnabled(InputSourceState& state, const std::string& id, bool enabled) {
  if (enabled) {
    state.enabled.insert(id);
  } else {
    state.enabled.erase(id);
    if (state.current == id) state.current = kBuiltInLayoutId;
  }
}

void setAllEnabled(InputSourceState& state, const std::string& bundleId, bool enabled) {
  for (const auto& source : sourcesOf(state)) {
    if (source.bundleId == bundleId) setEnabled(state, source.id, enabled);
  }
}

bool hasInputMethodComponent(const std::string& identifier) {
  return ("." + identifier + ".").find(".inputmethod.") != std::string::npos;
}

using FrameSource = std::function<std::optional<Rect>()>;

/// What the agent's windows are to lie beside.
FrameSource& agentNeighbour() {
  static FrameSource source = [] { return std::nullopt; };
  return source;
}

}  // namespace

std::vector<InputSourceInfo> installedInputSources() {
  return sourcesOf(readInputSourceState());
}

std::optional<InputSourceInfo> findInputSource(const std::string& id) {
  return find(id, readInputSourceState());
}

Status registerInputMethod(const fs::path& bundle) {
  const auto info = readPropertyListDictionary(bundle / "Contents" / "Info.plist");
  if (!info) return kFileNotFound;
  if (!hasInputMethodComponent(textIn(*info, "CFBundleIdentifier").value_or(""))) return kNoError;
  const fs::path place = (bundle / "")
                             .lexically_normal()
                             .parent_path()
                             .lexically_relative(inputMethodsFolder().lexically_normal());
  if (place.empty() || place == "." || *place.begin() == "..") return kParameterError;
  return changeInputSourceState([&](InputSourceState& state) {
    state.registered.insert(place.string());
    return kNoError;
  });
}

Status enableInputSource(const std::string& id) {
  std::string toAsk;
  const Status status = changeInputSourceState([&](InputSourceState& state) {
    const auto source = find(id, state);
    if (!source) return kParameterError;
    if (source->id == kBuiltInLayoutId) return kNoError;
    if (!source->isAllowed) {
      state.asked.insert(toAsk = source->bundleId);
    } else if (source->modeId) {
      setEnabled(state, id, true);
    } else {
      setAllEnabled(state, source->bundleId, true);
    }
    return kNoError;
  });
  if (status == kNoError && !toAsk.empty()) startInputSourceAgent({"--consent", toAsk});
  return status;
}

Status disableInputSource(const std::string& id) {
  return changeInputSourceState([&](InputSourceState& state) {
    // Of a bundle that is gone nothing stays, the user's answer neither.
    const bool isGone = !findInBundle(id, state);
    if (isGone && state.enabled.erase(id) + state.allowed.erase(id) + state.asked.erase(id) == 0)
      return kParameterError;
    setEnabled(state, id, false);
    return kNoError;
  });
}

Status selectInputSource(const std::string& id) {
  return changeInputSourceState([&](InputSourceState& state) {
    const auto source = find(id, state);
    if (!source || !source->isEnabled || !source->isSelectCapable) return kParameterError;
    state.current = id;
    return kNoError;
  });
}

Status allowInputMethod(const std::string& id) {
  return changeInputSourceState([&](InputSourceState& state) {
    const auto source = findInBundle(id, state);
    if (!source) return kParameterError;
    state.allowed.insert(source->bundleId);
    state.asked.erase(source->bundleId);
    setAllEnabled(state, source->bundleId, true);
    return kNoError;
  });
}

Status denyInputMethod(const std::string& id) {
  return changeInputSourceState([&](InputSourceState& state) {
    const auto source = findInBundle(id, state);
    if (!source) return kParameterError;
    state.allowed.erase(source->bundleId);
    state.asked.erase(source->bundleId);
    setAllEnabled(state, source->bundleId, false);
    return kNoError;
  });
}

void placeAgentBeside(std::function<std::optional<Rect>()> frame) {
  agentNeighbour() = std::move(frame);
}

bool startInputSourceAgent(std::vector<std::string> arguments) {
  const fs::path agent = bundleLocation() / "Contents" / "Helpers" / "input-source-agent";
  std::error_code error;
  if (!fs::exists(agent, error) || !hasDisplay()) return false;
  const auto root = rootArguments();
  arguments.insert(arguments.begin(), root.begin(), root.end());
  if (const auto frame = agentNeighbour()()) {
    std::string option = "--beside=";
    for (const double each : {frame->x, frame->y, frame->width, frame->height}) {
      if (option.back() != '=') option += ',';
      option += std::to_string(std::lround(each));
    }
    arguments.push_back(option);
  }
  return startDetached(agent, arguments);
}

}  // namespace platform::linux_
