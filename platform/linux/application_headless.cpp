// What a program without windows has of the application.

#include "platform/application.h"

namespace platform {

void activateIgnoringOtherApps() {}

}  // namespace platform
