#include "platform/application.h"

#import <AppKit/AppKit.h>

namespace platform {

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
