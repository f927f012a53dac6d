#include <map>
#include <set>
#include <string>

#include "cli/commands.h"
#include "cli/diagnosis.h"
#include "platform/program.h"

namespace {

int tell(EventOutput& output, bool machineOnly) {
  std::map<Finding::Level, int> count;
  std::set<std::string> told;  // several findings with one cause count once
  for (const Finding& finding : diagnose(machineOnly)) {
    output.finding(finding);
    if (told.insert(finding.text).second) ++count[finding.level];
  }
  output.say(std::to_string(count[Finding::Level::pass]) + " 项通过，" +
             std::to_string(count[Finding::Level::warn]) + " 项警告，" +
             std::to_string(count[Finding::Level::fail]) + " 项失败");
  return count[Finding::Level::fail] == 0 ? kSuccess : kFailed;
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
