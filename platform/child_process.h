// Child processes.

#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// What of a child's output feeds its pipe.
enum class Capture {
  everything,  ///< Standard output and standard error, mixed.
  errors,      ///< Standard error alone; standard output is dropped.
};

/// How a child differs from a plain one.
struct ChildOptions {
  Capture capture = Capture::everything;
  /// Variables beside those of this process; one of the same name is replaced.
  std::map<std::string, std::string> environment;
};

/// A child that leads a process group of its own and whose standard input is
/// empty. The methods may be called on any thread, also at the same time; launch()
/// comes first.
class ChildProcess {
 public:
  /// Gets each piece of output as it was read (never empty, at most 64 KiB), in
  /// order, on a background thread of this child; ends with the stream. While the
  /// handler runs nothing is read, and the child waits when the pipe is full.
  using OutputHandler = std::function<void(std::string_view)>;

  /// A launch path without a slash is looked for in PATH.
  ChildProcess(std::string launchPath, std::vector<std::string> arguments,
               OutputHandler outputHandler, ChildOptions options = {});
  /// Ends the group of a child that is still running. Output already in the pipe
  /// reaches the handler first; no call to it comes afterwards.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Starts the child, once. Absent on success, else why not, for the user.
  std::optional<std::string> launch();

  /// Whether the child was launched and has not ended.
  bool isRunning() const;

  /// Waits for the child's end. Its exit status, or 128 and the number of the
  /// signal that has ended it. Not for the end of what the child has started.
  int wait();

  /// Asks the child's group to end (SIGTERM) and returns at once.
  void terminate();

  /// Asks the group to end, again and again; kills (SIGKILL) what is left of it
  /// when the child has ended, or after `patience`. False if the child runs on
  /// even so, because this process has not the right to kill it.
  bool end(std::chrono::milliseconds patience);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Runs a program with the standard streams of this process and waits for it, for
/// two seconds at most: then it is killed. A failure to launch and the exit status
/// are dropped. Any thread.
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments);

}  // namespace platform
