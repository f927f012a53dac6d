#include "platform/child_process.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

#include "platform/posix/descriptor.h"

#ifdef __APPLE__
#include <crt_externs.h>
#define environ (*_NSGetEnviron())
#else
extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX has no header for it
#endif

namespace platform {
namespace {

/// Where the streams of a new program lead.
struct StreamActions {
  StreamActions() { posix_spawn_file_actions_init(&value); }
  ~StreamActions() { posix_spawn_file_actions_destroy(&value); }
  posix_spawn_file_actions_t value{};
};

struct SpawnAttributes {
  SpawnAttributes() { posix_spawnattr_init(&value); }
  ~SpawnAttributes() { posix_spawnattr_destroy(&value); }
  posix_spawnattr_t value{};
};

/// Starts a program. Its output goes to this descriptor, its input is empty, and it
/// leads a group of its own; without a descriptor it gets our streams and group.
/// 0, or the error number.
int spawn(pid_t& child, const std::string& program, const std::vector<std::string>& arguments,
          int output = -1) {
  std::vector<char*> words = {const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);

  StreamActions streams;
  SpawnAttributes attributes;
  int flags = 0;
  if (output >= 0) {
    posix_spawn_file_actions_addopen(&streams.value, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&streams.value, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&streams.value, output, STDERR_FILENO);
    flags |= POSIX_SPAWN_SETPGROUP;
  }
#ifdef __APPLE__
  flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (output < 0) posix_spawn_file_actions_addinherit_np(&streams.value, stream);
#endif
  posix_spawnattr_setflags(&attributes.value, static_cast<short>(flags));
  return posix_spawn(&child, program.c_str(), &streams.value, &attributes.value, words.data(),
                     environ);
}

void reap(pid_t child) {
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

}  // namespace

struct ChildProcess::Impl {
  std::string launchPath;
  std::vector<std::string> arguments;
  OutputHandler outputHandler;
  pid_t child = 0;  // 0: not launched; reaped at the very end, so that its number stays taken
  Descriptor output;
  std::thread reader;

  bool isRunning() const {
    siginfo_t info{};
    const auto id = static_cast<id_t>(child);
    return child != 0 && ::waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
  }

  /// Hands the output on until the pipe is closed. A program that the child has started
  /// may keep it open: then this ends when the child has ended and the pipe is empty.
  void read() const {
    constexpr int kGrace = 200;  // milliseconds
    std::array<char, 64 * 1024> buffer;
    pollfd pipe{output.get(), POLLIN, 0};
    for (;;) {
      const bool isAlive = isRunning();
      const int ready = ::poll(&pipe, 1, kGrace);
      if (ready == 0 && !isAlive) return;
      if (ready <= 0) continue;
      const ssize_t count = ::read(output.get(), buffer.data(), buffer.size());
      if (count > 0)
        outputHandler({buffer.data(), static_cast<std::size_t>(count)});
      else if (count == 0 || errno != EINTR)
        return;
    }
  }
};

ChildProcess::ChildProcess(std::string launchPath, std::vector<std::string> arguments,
                           OutputHandler outputHandler)
    : impl_(std::make_unique<Impl>()) {
  impl_->launchPath = std::move(launchPath);
  impl_->arguments = std::move(arguments);
  impl_->outputHandler = std::move(outputHandler);
}

ChildProcess::~ChildProcess() {
  if (impl_->child == 0) return;
  ::kill(-impl_->child, SIGKILL);
  impl_->reader.join();
  reap(impl_->child);
}

std::optional<std::string> ChildProcess::launch() {
  Pipe pipe = makePipe();
  pid_t child = 0;
  const int error =
      pipe.readEnd ? spawn(child, impl_->launchPath, impl_->arguments, pipe.writeEnd.get()) : errno;
  if (error != 0) return impl_->launchPath + ": " + std::strerror(error);
  impl_->child = child;
  impl_->output = std::move(pipe.readEnd);
  impl_->reader = std::thread([impl = impl_.get()] { impl->read(); });
  return std::nullopt;
}

bool ChildProcess::isRunning() const {
  return impl_->isRunning();
}

void ChildProcess::terminate() {
  if (impl_->child != 0) ::kill(-impl_->child, SIGTERM);
}

void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  pid_t child = 0;
  if (spawn(child, launchPath, arguments) == 0) reap(child);
}

}  // namespace platform
