// What this project uses of Carbon: Text Input Sources. See
// tools/macos-sdk/README.md.

#pragma once

#include <CoreServices/CoreServices.h>

typedef struct __TISInputSource* TISInputSourceRef;

CF_EXPORT const CFStringRef kTISPropertyBundleID;
CF_EXPORT const CFStringRef kTISPropertyInputSourceID;
CF_EXPORT const CFStringRef kTISPropertyInputModeID;
CF_EXPORT const CFStringRef kTISPropertyInputSourceIsEnabled;
CF_EXPORT const CFStringRef kTISPropertyInputSourceIsSelectCapable;
CF_EXPORT const CFStringRef kTISNotifyEnabledKeyboardInputSourcesChanged;

CF_EXPORT CFArrayRef TISCreateInputSourceList(CFDictionaryRef properties, Boolean includeAll);
CF_EXPORT void* TISGetInputSourceProperty(TISInputSourceRef source, CFStringRef key);
CF_EXPORT TISInputSourceRef TISCopyCurrentKeyboardInputSource(void);
CF_EXPORT OSStatus TISRegisterInputSource(CFURLRef location);
CF_EXPORT OSStatus TISEnableInputSource(TISInputSourceRef source);
CF_EXPORT OSStatus TISDisableInputSource(TISInputSourceRef source);
CF_EXPORT OSStatus TISSelectInputSource(TISInputSourceRef source);
CF_EXPORT OSStatus TISDeselectInputSource(TISInputSourceRef source);
