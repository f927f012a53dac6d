#include "platform/child_process.h"

#include <utility>

#include "tests/platform/test_platform.h"

namespace platform {

struct ChildProcess::Impl {
  std::string command;
  bool isRunning = false;
};
ChildProcess::ChildProcess(std::string launchPath, std::vector<std::string> arguments,
                           OutputHandler outputHandler)
    : impl_(std::make_unique<Impl>()) {
  impl_->command = std::move(launchPath);
  for (const auto& argument : arguments) impl_->command += " " + argument;
  test::active->outputHandler = std::move(outputHandler);
  test::active->speaking = this;
}
ChildProcess::~ChildProcess() {
  if (!test::active) return;
  if (isRunning()) terminate();
  if (test::active->speaking == this) test::active->outputHandler = nullptr;
}
std::optional<std::string> ChildProcess::launch() {
  test::note("launch " + impl_->command);
  if (test::active->duringLaunch) test::active->duringLaunch();
  impl_->isRunning = !test::active->launchProblem;
  if (impl_->isRunning) ++test::active->runningChildren;
  return test::active->launchProblem;
}
bool ChildProcess::isRunning() const {
  return impl_->isRunning;
}
void ChildProcess::terminate() {
  test::note("terminate");
  if (std::exchange(impl_->isRunning, false)) --test::active->runningChildren;
}
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  std::string command = launchPath;
  for (const auto& argument : arguments) command += " " + argument;
  test::note("run " + command);
}

}  // namespace platform
