#import <AppKit/AppKit.h>

#include <optional>
#include <utility>

#include "platform/application.h"

namespace platform {

namespace {

std::optional<int> endStatus;  // main thread only

}  // namespace

std::optional<std::string> takePlatformOptions(std::vector<std::string>& /*arguments*/) {
  return std::nullopt;
}

std::string platformOptionsUsage() {
  return {};
}

int runMainLoop() {
  @autoreleasepool {
    // The input-source and scripting services want a shared application. The
    // program may lie in the bundle of one with windows: keep it out of the
    // Dock and from taking the foreground.
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyProhibited];
  }
  while (!endStatus) CFRunLoopRun();
  return *std::exchange(endStatus, std::nullopt);
}

void endMainLoop(int status) {
  endStatus = status;
  CFRunLoopStop(CFRunLoopGetMain());
}

void activateIgnoringOtherApps() {
  @autoreleasepool {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
  }
}

void terminateApplication() {
  @autoreleasepool {
    [NSApplication.sharedApplication terminate:nil];
  }
}

}  // namespace platform
