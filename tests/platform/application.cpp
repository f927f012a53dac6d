#include "platform/application.h"

#include "tests/platform/test_platform.h"

namespace platform {

void activateIgnoringOtherApps() {
  test::note("activate");
}
void terminateApplication() {
  test::note("terminate application");
}

}  // namespace platform
