// Follows an install log that is there already, as an installation does, until the
// whole of it is in the log of the installer; then prints what it cost, as JSON.
//
//   log_follow ROOT

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "installer/content_view.h"
#include "platform/child_process.h"
#include "platform/file_root.h"
#include "platform/program.h"

namespace {

using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double threadSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

/// A line "KEY:  1234 kB" of what the system says of this process, in bytes.
double memory(const std::string& key) {
  std::ifstream lines("/proc/self/status");
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with(key + ":")) return std::stod(line.substr(key.size() + 1)) * 1024;
  return 0.0;
}

/// Whether the log in memory is this file.
bool isFile(const std::string& text, const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string part(1U << 20U, '\0');
  for (std::size_t at = 0; at < text.size(); at += part.size()) {
    part.resize(std::min(part.size(), text.size() - at));
    if (!file.read(part.data(), std::streamsize(part.size())) ||
        text.compare(at, part.size(), part))
      return false;
  }
  return file.peek() == std::ifstream::traits_type::eof();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: log_follow ROOT\n");
    return 64;
  }
  for (const auto& option : platform::platformOptions()) option.use(argv[1]);
  const auto installLog = platform::onDisk(kInstallLogPath);
  const double size = double(std::filesystem::file_size(installLog));

  const auto view = ContentView::create();
  const double memoryBefore = memory("VmRSS");
  double seconds = 0.0;
  double longestTurn = 0.0;
  double longestTurnBusy = 0.0;
  std::shared_ptr<platform::ChildProcess> tail;
  std::unique_ptr<platform::Timer> check;
  platform::asyncOnMain([&] {
    const auto start = Clock::now();
    tail = view->startFollowingInstallLog();
    // This timer gets its turn between two pieces: it sees how long it had to wait.
    check = platform::scheduleTimer(
        std::chrono::milliseconds(1),
        [&, start, turn = Clock::now(), busy = threadSeconds()]() mutable {
          longestTurn = std::max(longestTurn, since(turn));
          longestTurnBusy = std::max(longestTurnBusy, threadSeconds() - busy);
          turn = Clock::now();
          busy = threadSeconds();
          if (double(view->logText->size()) < size) return;
          seconds = since(start);
          platform::endMainLoop(0);
        });
  });
  platform::runMainLoop();
  const double memoryMost = memory("VmHWM");
  check.reset();
  tail.reset();

  std::printf(
      "{\"seconds\": %.6f, \"longestTurnSeconds\": %.6f, \"longestBusyTurnSeconds\": %.6f, "
      "\"memoryPerByte\": %.4f}\n",
      seconds, longestTurn, longestTurnBusy, (memoryMost - memoryBefore) / size);
  const bool isWhole =
      isFile(view->logText, installLog) && isFile(view->logText, platform::onDisk(kUILogPath));
  if (!isWhole) std::fprintf(stderr, "log_follow: the log is not the one that was followed\n");
  return isWhole ? 0 : 1;
}
