// Child processes.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A child whose standard output and standard error both feed one pipe.
/// The methods may be called on any thread, one at a time.
class ChildProcess {
 public:
  /// Gets each piece of output as it was read (never empty, at most 64 KiB), in
  /// order, on a background thread of this child; ends with the stream.
  using OutputHandler = std::function<void(std::string_view)>;

  ChildProcess(std::string launchPath, std::vector<std::string> arguments,
               OutputHandler outputHandler);
  /// Terminates the child if it is still running and reaps it. Output already
  /// in the pipe reaches the handler first; no call to it comes afterwards.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Starts the child, once. Absent on success, else why not, for the user.
  std::optional<std::string> launch();

  /// Whether the child was launched and has not ended.
  bool isRunning() const;

  /// Asks the child to end (SIGTERM) and returns at once.
  void terminate();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Runs a program with the standard streams of this process and waits for it.
/// A failure to launch and the exit status are dropped. Any thread.
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments);

}  // namespace platform
