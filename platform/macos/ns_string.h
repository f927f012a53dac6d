// For Objective-C++ under ARC.

#pragma once

#import <Foundation/Foundation.h>

#include <string>

#include "platform/macos/cf_conversions.h"

namespace platform {

inline NSString* _Nonnull toNSString(const std::string& text) {
  return (NSString* _Nonnull)CFBridgingRelease(toCfString(text).release());
}

inline std::string toString(NSString* _Nonnull text) {
  return toString((__bridge CFStringRef)text);
}

}  // namespace platform
