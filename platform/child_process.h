// Child processes.

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A child that leads a process group of its own. Its standard input is empty; its
/// standard output and standard error feed one pipe. launch() comes first, the other
/// methods may be called on any thread.
class ChildProcess {
 public:
  /// Gets each piece of output as it was read (never empty, at most 64 KiB), in
  /// order, on a background thread of this child. While the handler runs nothing is
  /// read, and the child waits when the pipe is full.
  using OutputHandler = std::function<void(std::string_view)>;

  /// `launchPath` is the path of the program. PATH is not searched.
  ChildProcess(std::string launchPath, std::vector<std::string> arguments,
               OutputHandler outputHandler);
  /// Kills the child's group. Output that is in the pipe reaches the handler first;
  /// no call to it comes afterwards.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Starts the child, once. Absent on success, else why not, for the user.
  std::optional<std::string> launch();

  /// Whether the child was launched and has not ended.
  bool isRunning() const;

  /// Asks the child's group to end (SIGTERM) and returns at once.
  void terminate();

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Runs a program with the standard streams of this process and waits for its end.
/// A failure to launch and the exit status are dropped. Any thread.
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments);

}  // namespace platform
