// For Objective-C++ under ARC.

#pragma once

#import <Foundation/Foundation.h>

#include <string>

#include "platform/macos/cf_conversions.h"

namespace platform {

inline NSString* toNSString(const std::string& text) {
  return CFBridgingRelease(toCfString(text).release());
}

inline std::string toString(NSString* text) {
  return toString((__bridge CFStringRef)text);
}

}  // namespace platform
