// The running application among the others.

#pragma once

namespace platform {

/// Brings this application to the front of the others
/// (activateIgnoringOtherApps:); no effect on a program without windows. Main
/// thread.
void activateIgnoringOtherApps();

/// Quits the application (terminate:), whether or not a window objects. Main
/// thread.
void terminateApplication();

}  // namespace platform
