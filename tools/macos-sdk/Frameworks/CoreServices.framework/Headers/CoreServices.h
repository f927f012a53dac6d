// What this project uses of Core Services. See tools/macos-sdk/README.md.

#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_ASSUME_NONNULL_BEGIN
CF_EXPORT OSStatus LSRegisterURL(CFURLRef url, Boolean update);
CF_ASSUME_NONNULL_END
