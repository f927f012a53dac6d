#include "platform/child_process.h"

#include <utility>

#include "tests/platform/test_platform.h"

namespace platform {

struct ChildProcess::Impl {
  std::string command;
  OutputHandler outputHandler;
  /// While it runs.
  Observation output;
};
ChildProcess::ChildProcess(std::string launchPath, std::vector<std::string> arguments,
                           OutputHandler outputHandler)
    : impl_(
          std::make_unique<Impl>(Impl{std::move(launchPath), std::move(outputHandler), nullptr})) {
  for (const auto& argument : arguments) impl_->command += " " + argument;
}
ChildProcess::~ChildProcess() {
  if (test::active && isRunning()) terminate();
}
std::optional<std::string> ChildProcess::launch() {
  test::note("launch " + impl_->command);
  if (test::active->duringLaunch) test::active->duringLaunch();
  if (test::active->launchProblem) return test::active->launchProblem;
  impl_->output = test::active->childOutput.add(impl_->outputHandler);
  ++test::active->runningChildren;
  return std::nullopt;
}
bool ChildProcess::isRunning() const {
  return impl_->output != nullptr;
}
void ChildProcess::terminate() {
  test::note("terminate");
  if (std::exchange(impl_->output, nullptr)) --test::active->runningChildren;
}
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  std::string command = launchPath;
  for (const auto& argument : arguments) command += " " + argument;
  test::note("run " + command);
}

}  // namespace platform
