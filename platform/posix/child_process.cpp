#include "platform/child_process.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/posix/descriptor.h"
#include "platform/posix/spawn.h"

namespace platform {
namespace {

using namespace std::chrono_literals;

// How long a child that is no longer wanted gets to end by itself.
constexpr auto kPatience = 500ms;
// As long as runAndWait() waits.
constexpr auto kLongestRun = 2000ms;

int exitStatus(int status) {
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Waits for the end of a child and leaves it to be reaped, so that its number
/// stays taken.
void awaitEnd(pid_t child) {
  siginfo_t info;
  while (::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT) != 0 &&
         errno == EINTR) {
  }
}

}  // namespace

struct ChildProcess::Impl {
  std::string launchPath;
  std::vector<std::string> arguments;
  OutputHandler outputHandler;
  ChildOptions options;

  mutable std::mutex mutex;  // guards the next three
  mutable pid_t child = 0;   // 0: not launched, or reaped
  mutable int status = 0;
  bool isEnding = false;

  Descriptor output;
  Pipe stop;  // its write end closed: nobody writes any more, read what is there
  std::thread reader;

  /// Holding the mutex. Whether there is no child, or it has just been reaped.
  bool reap() const {
    if (child == 0) return true;
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
        info.si_pid == 0)
      return false;
    // While the child is there to be reaped, its group bears its number.
    if (isEnding) ::kill(-child, SIGKILL);
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    child = 0;
    return true;
  }

  bool hasEnded() const {
    const std::lock_guard lock(mutex);
    return reap();
  }

  void signalGroup(int number) const {
    const std::lock_guard lock(mutex);
    if (child != 0) ::kill(-child, number);
  }

  bool handOn(std::size_t limit, std::array<char, 64 * 1024>& buffer, std::size_t& count) const {
    const ssize_t got = ::read(output.get(), buffer.data(), std::min(limit, buffer.size()));
    if (got < 0) {
      count = 0;
      return errno == EINTR || errno == EAGAIN;
    }
    count = static_cast<std::size_t>(got);
    if (count > 0) outputHandler({buffer.data(), count});
    return count > 0;
  }

  void read() const {
    std::array<char, 64 * 1024> buffer;
    std::size_t count = 0;
    for (;;) {
      std::array<pollfd, 2> watched = {
          {{output.get(), POLLIN, 0}, {stop.readEnd.get(), POLLIN, 0}}};
      if (::poll(watched.data(), watched.size(), -1) < 0) {
        if (errno != EINTR) return;
      } else if (watched[1].revents != 0) {
        break;
      } else if (watched[0].revents != 0 && !handOn(buffer.size(), buffer, count)) {
        return;
      }
    }
    // What is in the pipe now and no more: someone else may hold it and write on.
    int left = 0;
    if (::ioctl(output.get(), FIONREAD, &left) != 0) return;
    for (auto rest = static_cast<std::size_t>(left); rest > 0; rest -= count)
      if (!handOn(rest, buffer, count)) return;
  }

  int startReader() {
    try {
      reader = std::thread([this] { read(); });
      return 0;
    } catch (const std::system_error& error) {
      return error.code().value();
    }
  }

  void stopReader() {
    stop.writeEnd.close();
    if (reader.joinable()) reader.join();
  }
};

ChildProcess::ChildProcess(std::string launchPath, std::vector<std::string> arguments,
                           OutputHandler outputHandler, ChildOptions options)
    : impl_(std::make_unique<Impl>()) {
  impl_->launchPath = std::move(launchPath);
  impl_->arguments = std::move(arguments);
  impl_->outputHandler = std::move(outputHandler);
  impl_->options = std::move(options);
}

ChildProcess::~ChildProcess() {
  end(kPatience);
  impl_->stopReader();
}

std::optional<std::string> ChildProcess::launch() {
  Pipe pipe = makePipe();
  impl_->stop = makePipe();
  int error = pipe.readEnd && impl_->stop.readEnd ? 0 : errno;
  impl_->output = std::move(pipe.readEnd);
  // Before the child: one that nobody listens to must not run.
  if (error == 0) error = impl_->startReader();
  if (error == 0) {
    SpawnOptions spawning;
    spawning.environment = impl_->options.environment;
    spawning.ownGroup = true;
    spawning.standardInput = kNullDevice;
    spawning.standardOutput =
        impl_->options.capture == Capture::everything ? pipe.writeEnd.get() : kNullDevice;
    spawning.standardError = pipe.writeEnd.get();
    const std::lock_guard lock(impl_->mutex);
    error = spawn(impl_->child, impl_->launchPath, impl_->arguments, spawning);
    if (error != 0) impl_->child = 0;
  }
  if (error == 0) return std::nullopt;
  impl_->stopReader();
  return impl_->launchPath + ": " + std::strerror(error);
}

bool ChildProcess::isRunning() const {
  return !impl_->hasEnded();
}

int ChildProcess::wait() {
  pid_t child = 0;
  {
    const std::lock_guard lock(impl_->mutex);
    child = impl_->child;
  }
  if (child != 0) awaitEnd(child);
  impl_->hasEnded();
  const std::lock_guard lock(impl_->mutex);
  return exitStatus(impl_->status);
}

void ChildProcess::terminate() {
  impl_->signalGroup(SIGTERM);
}

bool ChildProcess::end(std::chrono::milliseconds patience) {
  {
    const std::lock_guard lock(impl_->mutex);
    if (impl_->reap()) return true;
    impl_->isEnding = true;
  }
  constexpr auto kStep = 5ms;
  constexpr int kStepsBetweenRequests = 20;
  for (int step = 0; step * kStep < patience; ++step) {
    // More than once: a program that the child is just starting misses the first.
    if (step % kStepsBetweenRequests == 0) impl_->signalGroup(SIGTERM);
    if (impl_->hasEnded()) return true;
    std::this_thread::sleep_for(kStep);
  }
  impl_->signalGroup(SIGKILL);
  for (int step = 0; step < kStepsBetweenRequests; ++step) {
    if (impl_->hasEnded()) return true;
    std::this_thread::sleep_for(kStep);
  }
  return false;
}

void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  pid_t child = 0;
  if (spawn(child, launchPath, arguments, {}) != 0) return;
  constexpr auto kStep = 1ms;
  for (auto waited = 0ms; waited < kLongestRun; waited += kStep) {
    if (::waitpid(child, nullptr, WNOHANG) != 0) return;
    std::this_thread::sleep_for(kStep);
  }
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, WNOHANG);
}

}  // namespace platform
