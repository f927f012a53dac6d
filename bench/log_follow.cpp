// Follows a long install log as an installation does, and prints what it costs:
// against reading it through the same pipe without handling it, and against
// handling one piece.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/child_process.h"
#include "platform/file_root.h"
#include "platform/program.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t kLogSize = 100'000'000;

double since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Reads the whole install log through tail, each piece given to `handle` off the
/// main thread; ends the main loop when `isDone` says so on the main thread.
double follow(platform::ChildProcess::OutputHandler handle, const std::function<bool()>& isDone) {
  const auto start = Clock::now();
  platform::ChildProcess tail("/usr/bin/tail",
                              {"-n", "+1", "-F", platform::onDisk(kInstallLogPath).string()},
                              std::move(handle));
  std::unique_ptr<platform::Timer> check;
  platform::asyncOnMain([&] {
    tail.launch();
    check = platform::scheduleTimer(std::chrono::milliseconds(1), [&] {
      if (isDone()) platform::endMainLoop(0);
    });
  });
  platform::runMainLoop();
  return since(start);
}

}  // namespace

int main() {
  std::string root = std::filesystem::temp_directory_path() / "orvane-bench-XXXXXX";
  ::mkdtemp(root.data());
  for (const auto& option : platform::platformOptions()) option.use(root);

  std::string log;
  for (std::size_t line = 0; log.size() < kLogSize; ++line)
    log += "copying file " + std::to_string(line) + " of the bundle\n";
  std::ofstream(platform::onDisk(kInstallLogPath), std::ios::binary) << log;

  std::atomic<std::size_t> bytesRead = 0;
  const double readOnly = follow([&](std::string_view piece) { bytesRead += piece.size(); },
                                 [&] { return bytesRead == log.size(); });

  const auto view = ContentView::create();
  std::vector<double> pieces;
  double longestStall = 0.0;
  auto lastTurn = Clock::now();
  const double followed = follow(
      [&](std::string_view piece) {
        platform::asyncOnMain([&, text = std::string(piece)] {
          const auto start = Clock::now();
          view->handleInstallLogChunk(text);
          pieces.push_back(since(start));
        });
      },
      [&] {
        // This timer runs between two pieces: it sees how long it had to wait.
        longestStall = std::max(longestStall, since(lastTurn));
        lastTurn = Clock::now();
        return view->logText->size() >= log.size();
      });

  std::ostringstream written;
  written << std::ifstream(platform::onDisk(kUILogPath), std::ios::binary).rdbuf();
  const bool isWhole = written.str() == log && view->logText.get() == log;
  std::filesystem::remove_all(root);

  std::sort(pieces.begin(), pieces.end());
  const double slowest = pieces.back();
  std::printf("100 MB install log, %zu pieces\n", pieces.size());
  std::printf("  %-44s %8.2f s\n", "read through tail, not handled", readOnly);
  std::printf("  %-44s %8.2f s  %5.2f times\n", "followed, handled, logged", followed,
              followed / readOnly);
  std::printf("  %-44s %8.2f ms\n", "a piece, median", pieces[pieces.size() / 2] * 1e3);
  std::printf("  %-44s %8.2f ms\n", "a piece, slowest", slowest * 1e3);
  std::printf("  %-44s %8.2f ms  %5.2f times the slowest piece\n", "main thread away, longest",
              longestStall * 1e3, longestStall / slowest);
  std::printf("  every byte in order: %s\n", isWhole ? "yes" : "NO");
  return isWhole ? 0 : 1;
}
