#include <array>
#include <csignal>
#include <utility>

#include "platform/application.h"
#include "platform/macos/dispatch_source.h"

namespace platform {

namespace {

// A source sees a signal whatever its disposition is, but the default one would
// still end the process. Not SIG_IGN: a child would inherit that and could not
// be terminated, while a handler is reset in it.
void keepRunning(int signal) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(signal, &action, nullptr);
}

DispatchSource watch(int signal, const Block& block) {
  keepRunning(signal);
  auto source =
      makeMainQueueSource(DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(signal), block);
  dispatch_resume(source.get());
  return source;
}

}  // namespace

void onTerminationRequest(Block block) {
  static std::array<DispatchSource, 4> sources;
  sources = {watch(SIGINT, block), watch(SIGTERM, block), watch(SIGHUP, block),
             watch(SIGQUIT, block)};
  keepRunning(SIGPIPE);
}

}  // namespace platform
