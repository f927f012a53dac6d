#include "platform/program.h"

namespace platform {

// A test lets time pass itself: no program of this platform runs a main loop.
std::vector<PlatformOption> platformOptions() {
  return {};
}
void onTerminationRequest(Block /*block*/) {}

}  // namespace platform
