#include "platform/text_input_sources.h"

#include <Carbon/Carbon.h>

#include <utility>

#include "platform/macos/cf_conversions.h"
#include "platform/macos/cf_ref.h"

namespace platform {

struct InputSourceObject {
  CfRef<TISInputSourceRef> reference;
};

namespace {

CFStringRef key(InputSourceProperty property) {
  switch (property) {
    case InputSourceProperty::bundleID:
      return kTISPropertyBundleID;
    case InputSourceProperty::inputSourceID:
      return kTISPropertyInputSourceID;
    case InputSourceProperty::inputModeID:
      return kTISPropertyInputModeID;
    case InputSourceProperty::isEnabled:
      return kTISPropertyInputSourceIsEnabled;
    case InputSourceProperty::isSelectCapable:
      return kTISPropertyInputSourceIsSelectCapable;
  }
}

InputSource share(CfRef<TISInputSourceRef> reference) {
  if (!reference) return nullptr;
  return std::make_shared<const InputSourceObject>(InputSourceObject{std::move(reference)});
}

TISInputSourceRef reference(const InputSource& source) {
  assertMainThread();
  return source->reference.get();
}

CfRef<CFDictionaryRef> toCfDictionary(const InputSourceFilter& filter) {
  const void* property = key(filter.property);
  const auto value = toCfPropertyList(filter.value);
  const void* object = value.get();
  return adopt(CFDictionaryCreate(nullptr, &property, &object, 1, &kCFTypeDictionaryKeyCallBacks,
                                  &kCFTypeDictionaryValueCallBacks));
}

}  // namespace

std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled) {
  assertMainThread();
  const auto properties = filter ? toCfDictionary(*filter) : CfRef<CFDictionaryRef>();
  const auto list = adopt(TISCreateInputSourceList(properties.get(), includeAllInstalled));
  if (!list) return std::nullopt;
  std::vector<InputSource> sources;
  const CFIndex count = CFArrayGetCount(list.get());
  for (CFIndex index = 0; index < count; ++index) {
    // The elements outlive the array, so each needs a reference of its own.
    const void* element = CFArrayGetValueAtIndex(list.get(), index);
    sources.push_back(share(retain(static_cast<TISInputSourceRef>(const_cast<void*>(element)))));
  }
  return sources;
}

std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property) {
  return toPropertyListValue(TISGetInputSourceProperty(reference(source), key(property)));
}

InputSource copyCurrentKeyboardInputSource() {
  assertMainThread();
  return share(adopt(TISCopyCurrentKeyboardInputSource()));
}

Status registerInputSource(const std::filesystem::path& bundle) {
  assertMainThread();
  return TISRegisterInputSource(toCfUrl(bundle, true).get());
}

Status enableInputSource(const InputSource& source) {
  return TISEnableInputSource(reference(source));
}

Status disableInputSource(const InputSource& source) {
  return TISDisableInputSource(reference(source));
}

Status selectInputSource(const InputSource& source) {
  return TISSelectInputSource(reference(source));
}

Status deselectInputSource(const InputSource& source) {
  return TISDeselectInputSource(reference(source));
}

}  // namespace platform
