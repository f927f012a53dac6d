#include "platform/macos/admin_script_error.h"

#include "platform/macos/ns_string.h"

namespace platform {

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

}  // namespace platform
