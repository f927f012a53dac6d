#include "platform/text_input_sources.h"

#include <utility>

#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace platform {

namespace {

Status act(const std::string& call, const InputSource& source) {
  const auto& id = source->properties.at(InputSourceProperty::inputSourceID);
  test::note(call + " " + *id.as<std::string>());
  auto& answers = test::active->statuses[call];
  if (answers.empty()) return kNoError;
  const Status status = answers.front();
  answers.erase(answers.begin());
  return status;
}

}  // namespace

std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled) {
  if (test::active->answersNoList) return std::nullopt;
  std::vector<InputSource> list;
  for (const auto& source : test::active->sources) {
    const bool isEnabled =
        getInputSourceProperty(source, InputSourceProperty::isEnabled) == PropertyListValue(true);
    if (!includeAllInstalled && (test::active->listsNoEnabled || !isEnabled)) continue;
    if (filter && test::valueIn(source->properties, filter->property) != filter->value) continue;
    list.push_back(source);
  }
  return list;
}
std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property) {
  return test::valueIn(source->properties, property);
}
InputSource copyCurrentKeyboardInputSource() {
  return test::active->current;
}
Status registerInputSource(const std::filesystem::path& bundle) {
  test::note("register " + bundle.lexically_relative(test::active->root).string());
  return kNoError;
}
Status enableInputSource(const InputSource& source) {
  return act("enable", source);
}
Status disableInputSource(const InputSource& source) {
  return act("disable", source);
}
Status selectInputSource(const InputSource& source) {
  const Status status = act("select", source);
  if (test::active->appliesSelect && status == kNoError) test::active->current = source;
  return status;
}
Status deselectInputSource(const InputSource& source) {
  return act("deselect", source);
}
// Its beginning and its end stand in the journal.
Observation observeEnabledInputSourcesChanged(Block block) {
  auto inner = test::active->enabledSourcesObservers.add(std::move(block));
  test::note("observe");
  ++test::active->liveObservers;
  return {inner.get(), [inner](void*) {
            if (!test::active) return;
            test::note("stop observing");
            --test::active->liveObservers;
          }};
}

}  // namespace platform

namespace test {

std::shared_ptr<platform::InputSourceObject> Platform::addSource(const std::string& bundleID,
                                                                 const std::string& sourceID) {
  using platform::InputSourceProperty;
  auto source = std::make_shared<platform::InputSourceObject>();
  source->properties = {{InputSourceProperty::bundleID, bundleID},
                        {InputSourceProperty::inputSourceID, sourceID},
                        {InputSourceProperty::isEnabled, false},
                        {InputSourceProperty::isSelectCapable, true}};
  sources.push_back(source);
  return source;
}

void Platform::addInputMethod() {
  current = addSource("com.apple.keyboardlayout", "com.apple.keylayout.US");
  mode = addSource(kBase, kPinyin);
  mode->properties[platform::InputSourceProperty::inputModeID] = kPinyin;
  base = addSource(kBase, kBase);
}

void Platform::allow(bool isAllowed) {
  for (const auto& source : {mode, base})
    source->properties[platform::InputSourceProperty::isEnabled] = isAllowed;
}

void Platform::notifyEnabledSourcesChanged() {
  platform::asyncOnMain([] { active->enabledSourcesObservers.call(); });
}

}  // namespace test
