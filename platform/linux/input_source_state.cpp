#include "platform/linux/input_source_state.h"

#include <filesystem>

#include "platform/common/property_list_lookups.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/property_list_file.h"
#include "platform/main_queue.h"

namespace platform::linux_ {

namespace {

std::filesystem::path stateFile() {
  return userStore() / "InputSources.plist";
}

InputSourceState stateFrom(const PropertyListDictionary& stored) {
  const auto setIn = [&](const char* key) {
    std::set<std::string> texts;
    const auto* value = valueIn(stored, key);
    const auto* array = value ? value->as<PropertyListArray>() : nullptr;
    for (const auto& item : array ? *array : PropertyListArray())
      if (const auto* text = item.as<std::string>()) texts.insert(*text);
    return texts;
  };
  return {setIn("registered"), setIn("allowed"), setIn("asked"), setIn("enabled"),
          textIn(stored, "current").value_or("")};
}

PropertyListDictionary toDictionary(const InputSourceState& state) {
  const auto array = [](const std::set<std::string>& texts) {
    return PropertyListArray(texts.begin(), texts.end());
  };
  return {{"registered", array(state.registered)},
          {"allowed", array(state.allowed)},
          {"asked", array(state.asked)},
          {"enabled", array(state.enabled)},
          {"current", state.current}};
}

}  // namespace

InputSourceState readInputSourceState() {
  assertMainThread();
  return stateFrom(readPropertyListDictionary(stateFile()).value_or(PropertyListDictionary()));
}

Status changeInputSourceState(const std::function<Status(InputSourceState&)>& change) {
  assertMainThread();
  Status status = kNoError;
  const bool isStored = editPropertyListFile(stateFile(), [&](PropertyListDictionary& stored) {
    InputSourceState state = stateFrom(stored);
    status = change(state);
    if (!state.enabled.contains(state.current)) state.current.clear();
    stored = toDictionary(state);
  });
  return isStored ? status : kParameterError;
}

}  // namespace platform::linux_
