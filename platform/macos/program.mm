#import <AppKit/AppKit.h>

#include <array>
#include <csignal>
#include <optional>
#include <utility>

#include "platform/macos/dispatch_source.h"
#include "platform/program.h"

namespace platform {

namespace {

std::optional<int> endStatus;  // main thread only

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
      makeMainQueueSource(DISPATCH_SOURCE_TYPE_SIGNAL, static_cast<uintptr_t>(signal), 0, block);
  dispatch_resume(source.get());
  return source;
}

}  // namespace

std::vector<PlatformOption> platformOptions() {
  return {};
}

std::optional<std::string> missingOption() {
  return std::nullopt;
}

int runMainLoop() {
  @autoreleasepool {
    // The input-source and scripting services want a shared application. The
    // program may lie in the bundle of one with windows: keep it out of the
    // Dock and from taking the foreground.
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyProhibited];
  }
  while (!endStatus) CFRunLoopRun();
  return *std::exchange(endStatus, std::nullopt);
}

void endMainLoop(int status) {
  endStatus = status;
  CFRunLoopStop(CFRunLoopGetMain());
}

void onTerminationRequest(Block block) {
  static std::array<DispatchSource, 4> sources;
  sources = {watch(SIGINT, block), watch(SIGTERM, block), watch(SIGHUP, block),
             watch(SIGQUIT, block)};
  keepRunning(SIGPIPE);
}

}  // namespace platform
