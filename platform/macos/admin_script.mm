#include "platform/admin_script.h"

#import <Foundation/Foundation.h>

#include <atomic>
#include <mutex>

#include "platform/common/admin_script_source.h"
#include "platform/macos/ns_string.h"

namespace platform {

namespace {

std::mutex executing;  // NSAppleScript is not thread-safe
std::atomic<bool> isInterrupted = false;

// A value of another type than expected counts as none.
AdminScriptError toAdminScriptError(NSDictionary<NSString*, id>* error) {
  AdminScriptError result;
  const id number = error[NSAppleScriptErrorNumber];
  if ([number isKindOfClass:NSNumber.class]) {
    result.number = static_cast<NSNumber*>(number).intValue;
  }
  const id message = error[NSAppleScriptErrorMessage];
  if ([message isKindOfClass:NSString.class]) {
    result.message = toString(static_cast<NSString*>(message));
  }
  return result;
}

}  // namespace

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  if (!parseAdminScriptSource(source)) return adminScriptSyntaxError(source);
  // A worker has no pool of its own.
  const std::lock_guard lock(executing);
  if (isInterrupted) return AdminScriptError{kAdminScriptCancelled, std::nullopt};
  @autoreleasepool {
    NSAppleScript* script = [[NSAppleScript alloc] initWithSource:toNSString(source)];
    NSDictionary<NSString*, id>* error = nil;
    // Without a script object nothing runs and there is no error.
    [script executeAndReturnError:&error];
    if (error == nil) return std::nullopt;
    return toAdminScriptError(error);
  }
}

// The password prompt and the script belong to processes of the system, which
// this one can neither signal nor wait for.
bool interruptAdminScript() {
  isInterrupted = true;
  const std::unique_lock idle(executing, std::try_to_lock);
  return idle.owns_lock();
}

}  // namespace platform
