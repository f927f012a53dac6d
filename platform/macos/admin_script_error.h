// For Objective-C++.

#pragma once

#import <Foundation/Foundation.h>

#include "platform/admin_script.h"

namespace platform {

/// What an error dictionary of the scripting service says; a value of another
/// type than expected counts as none.
AdminScriptError toAdminScriptError(NSDictionary<NSString*, id>* error);

}  // namespace platform
