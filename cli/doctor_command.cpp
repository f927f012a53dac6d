#include <algorithm>
#include <string>

#include "cli/commands.h"
#include "cli/diagnosis.h"
#include "platform/main_queue.h"
#include "platform/program.h"

namespace {

int tell(EventOutput& output, bool machineOnly) {
  const Findings findings = diagnose(machineOnly);
  for (const Finding& finding : findings) output.finding(finding);
  const auto count = [&](Finding::Level level) {
    return std::to_string(std::count_if(findings.begin(), findings.end(),
                                        [&](const Finding& f) { return f.level == level; }));
  };
  output.say(count(Finding::Level::pass) + " 项通过，" + count(Finding::Level::warn) + " 项警告，" +
             count(Finding::Level::fail) + " 项失败");
  return isHealthy(findings) ? kSuccess : kFailed;
}

}  // namespace

int runDoctor(EventOutput& output, bool machineOnly) {
  output.phase("diagnosis");
  int status = kSuccess;
  if (machineOnly) {
    // Without the main loop: over a remote shell there may be no session for it.
    status = tell(output, machineOnly);
  } else {
    platform::asyncOnMain([&] { platform::endMainLoop(tell(output, machineOnly)); });
    status = platform::runMainLoop();
  }
  output.result(status);
  return status;
}
