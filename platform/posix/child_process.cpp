#include "platform/child_process.h"

#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/posix/descriptor.h"

extern char** environ;

namespace platform {
namespace {

/// Starts a child whose standard output and error are `output`, or inherited if
/// that is negative. 0, or the error number.
int spawn(pid_t& child, const std::string& launchPath, const std::vector<std::string>& arguments,
          int output) {
  std::vector<std::string> words = {launchPath};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // A child must not inherit signals that this process blocks or ignores.
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  sigset_t ignored;
  sigemptyset(&ignored);
  sigaddset(&ignored, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &ignored);
  short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#ifdef POSIX_SPAWN_CLOEXEC_DEFAULT
  flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (output < 0 || standard == STDIN_FILENO)
      posix_spawn_file_actions_addinherit_np(&actions, standard);
#endif
  posix_spawnattr_setflags(&attributes, flags);
  if (output >= 0) {
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  }
  const int error =
      posix_spawn(&child, launchPath.c_str(), &actions, &attributes, argv.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return error;
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

  mutable std::mutex mutex;
  mutable pid_t child = 0;  // 0: not launched, or reaped
  Descriptor output;
  Pipe stop;  // its write end closed: nobody writes any more, read what is there
  std::thread reader;

  bool isRunning() const {
    const std::lock_guard lock(mutex);
    if (child == 0) return false;
    if (::waitpid(child, nullptr, WNOHANG) == 0) return true;
    child = 0;
    return false;
  }

  void signal(int number) const {
    const std::lock_guard lock(mutex);
    if (child != 0) ::kill(child, number);
  }

  void read() const {
    std::array<char, 64 * 1024> buffer;
    for (;;) {
      std::array<pollfd, 2> watched = {
          {{output.get(), POLLIN, 0}, {stop.readEnd.get(), POLLIN, 0}}};
      if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) return;
      if (watched[0].revents != 0) {
        const ssize_t count = ::read(output.get(), buffer.data(), buffer.size());
        if (count > 0) outputHandler({buffer.data(), static_cast<std::size_t>(count)});
        if (count == 0 || (count < 0 && errno != EINTR)) return;
      } else if (watched[1].revents != 0) {
        return;
      }
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
  if (isRunning()) {
    terminate();
    // A child that does not heed SIGTERM must not hold this process up.
    for (int tries = 0; tries < 200 && isRunning(); ++tries)
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    if (isRunning()) {
      impl_->signal(SIGKILL);
      reap(impl_->child);
    }
  }
  impl_->stop.writeEnd.close();
  if (impl_->reader.joinable()) impl_->reader.join();
}

std::optional<std::string> ChildProcess::launch() {
  Pipe pipe = makePipe();
  impl_->stop = makePipe();
  int error = pipe.readEnd && impl_->stop.readEnd ? 0 : errno;
  if (error == 0) {
    const std::lock_guard lock(impl_->mutex);
    error = spawn(impl_->child, impl_->launchPath, impl_->arguments, pipe.writeEnd.get());
    if (error != 0) impl_->child = 0;
  }
  if (error != 0) return impl_->launchPath + ": " + std::strerror(error);
  impl_->output = std::move(pipe.readEnd);
  impl_->reader = std::thread([impl = impl_.get()] { impl->read(); });
  return std::nullopt;
}

bool ChildProcess::isRunning() const {
  return impl_->isRunning();
}

void ChildProcess::terminate() {
  impl_->signal(SIGTERM);
}

void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  pid_t child = 0;
  if (spawn(child, launchPath, arguments, -1) == 0) reap(child);
}

}  // namespace platform
