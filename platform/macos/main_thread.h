// What belongs to the main thread stays there.

#pragma once

#include <dispatch/dispatch.h>

namespace platform {

/// Ends the program, with a reason in its report, when it is on another thread. The
/// system's own services may fail there long after the call.
inline void assertMainThread() {
  dispatch_assert_queue(dispatch_get_main_queue());
}

}  // namespace platform
