#include "workbench/terminal_prompt.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>
#include <string_view>

#include "platform/posix/descriptor.h"

namespace {

using platform::Descriptor;

constexpr char kInterrupt = 'C' - '@';
constexpr char kQuit = '\\' - '@';

void write(int descriptor, std::string_view text) {
  [[maybe_unused]] const auto written = ::write(descriptor, text.data(), text.size());
}

/// Signals wait to be read, those that would stop a group in the background wait
/// for ever.
Descriptor holdSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaddset(&signals, signal);
  Descriptor ending(::signalfd(-1, &signals, SFD_CLOEXEC));
  for (const int signal : {SIGTTOU, SIGTTIN, SIGTSTP}) sigaddset(&signals, signal);
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  return ending;
}

/// The terminal while a password is typed: in the foreground, without echo. Keys
/// that send signals end the line instead, so nobody else gets to see them.
class QuietTerminal {
 public:
  QuietTerminal(int terminal, pid_t foreground) : terminal_(terminal), foreground_(foreground) {
    ::tcgetattr(terminal_, &before_);
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    quiet.c_lflag |= ICANON;
    quiet.c_cc[VEOL] = kInterrupt;
    quiet.c_cc[VEOL2] = kQuit;
    ::tcsetpgrp(terminal_, ::getpgrp());
    ::tcsetattr(terminal_, TCSAFLUSH, &quiet);
  }
  ~QuietTerminal() {
    ::tcsetattr(terminal_, TCSAFLUSH, &before_);
    ::tcsetpgrp(terminal_, foreground_);
  }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;

 private:
  int terminal_;
  pid_t foreground_;
  termios before_{};
};

}  // namespace

std::optional<bool> askInTerminal(const std::string& prompt, int installer, int foreground,
                                  std::string& reason) {
  const Descriptor terminal(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY));
  if (!terminal) {
    reason = "no display and no terminal";
    return std::nullopt;
  }
  const pid_t holder = ::tcgetpgrp(terminal.get());
  if (holder != ::getpgrp() && holder != foreground) {
    reason = "no display, and other programs have the terminal";
    return std::nullopt;
  }

  const Descriptor ending = holdSignals();
  std::array<char, 4096> line{};  // more than the kernel gives at once
  ssize_t length = 0;
  {
    const QuietTerminal quiet(terminal.get(), holder);
    write(terminal.get(), prompt + ": ");
    std::array<pollfd, 3> watched = {
        {{terminal.get(), POLLIN, 0}, {ending.get(), POLLIN, 0}, {installer, POLLIN, 0}}};
    while (::poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
    }
    const bool isUnwanted = watched[1].revents != 0 || watched[2].revents != 0;
    if (!isUnwanted) length = ::read(terminal.get(), line.data(), line.size());
    write(terminal.get(), "\n");
  }
  const bool isGiven = length > 0 && line[static_cast<std::size_t>(length) - 1] == '\n';
  const bool isPrinted =
      isGiven && ::write(STDOUT_FILENO, line.data(), static_cast<std::size_t>(length)) == length;
  ::explicit_bzero(line.data(), line.size());
  return isPrinted;
}
