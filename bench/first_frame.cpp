// How long programs take from their start to their first frame, and how much
// memory they have then: the installer beside an empty window of its toolkit.
//
//   first_frame BARE_WINDOW INSTALLER [RUNS]
//
// Exits with 1 if the installer needs more than its share.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr double kTimeShare = 1.6;
constexpr double kMemoryShare = 1.5;
constexpr int kDefaultRuns = 11;
// The toolkit logs each frame that it has shown.
constexpr const char* kLogRules = "qt.scenegraph.time.renderloop=true";

struct Sample {
  double milliseconds = 0.0;
  double residentMegabytes = 0.0;
  double proportionalMegabytes = 0.0;
};

/// A line "KEY:  1234 kB" of a file in the process's folder, in megabytes.
double memoryLine(pid_t process, const std::string& file, const std::string& key) {
  std::ifstream lines("/proc/" + std::to_string(process) + "/" + file);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with(key + ":")) return std::stod(line.substr(key.size() + 1)) / 1024;
  return 0.0;
}

/// Runs the program up to its first frame.
std::optional<Sample> run(std::vector<std::string> command) {
  std::array<int, 2> log{};
  if (::pipe(log.data()) != 0) return std::nullopt;
  std::vector<char*> arguments;
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);

  const auto start = std::chrono::steady_clock::now();
  const pid_t process = ::fork();
  if (process == 0) {
    ::dup2(log[1], STDERR_FILENO);
    ::close(log[0]);
    ::close(log[1]);
    ::setenv("QT_LOGGING_RULES", kLogRules, 1);
    ::execv(arguments.front(), arguments.data());
    ::_exit(127);
  }
  ::close(log[1]);

  std::optional<Sample> sample;
  std::string said;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; !sample && (count = ::read(log[0], buffer.data(), buffer.size())) > 0;) {
    said.append(buffer.data(), static_cast<std::size_t>(count));
    if (said.find("rendered") == std::string::npos) continue;
    const std::chrono::duration<double, std::milli> elapsed =
        std::chrono::steady_clock::now() - start;
    sample = Sample{elapsed.count(), memoryLine(process, "status", "VmRSS"),
                    memoryLine(process, "smaps_rollup", "Pss")};
  }
  if (!sample) std::fprintf(stderr, "%s\n", said.c_str());
  ::kill(process, SIGKILL);
  ::waitpid(process, nullptr, 0);
  ::close(log[0]);
  return sample;
}

double median(const std::vector<Sample>& samples, double Sample::*value) {
  std::vector<double> values;
  for (const Sample& sample : samples) values.push_back(sample.*value);
  std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
  return values[values.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: first_frame BARE_WINDOW INSTALLER [RUNS]\n");
    return 64;
  }
  const int runs = argc > 3 ? std::max(1, std::atoi(argv[3])) : kDefaultRuns;
  std::string root = std::filesystem::temp_directory_path() / "first-frame-XXXXXX";
  if (!::mkdtemp(root.data())) return 1;

  std::vector<Sample> bare;
  std::vector<Sample> installer;
  // In turn, so that both meet the same machine; the first of each warms it up.
  for (int i = 0; i <= runs; ++i) {
    const auto bareSample = run({argv[1]});
    const auto installerSample = run({argv[2], "--root", root});
    if (!bareSample || !installerSample) return 1;
    if (i == 0) continue;
    bare.push_back(*bareSample);
    installer.push_back(*installerSample);
  }
  std::filesystem::remove_all(root);

  struct Row {
    const char* name;
    double Sample::*value;
    double share;
  };
  bool isWithin = true;
  std::printf("%-28s %10s %10s %7s %7s\n", "first frame, median", "empty", "installer", "ratio",
              "limit");
  for (const Row& row :
       {Row{"time (ms)", &Sample::milliseconds, kTimeShare},
        Row{"resident memory (MB)", &Sample::residentMegabytes, kMemoryShare},
        Row{"proportional memory (MB)", &Sample::proportionalMegabytes, kMemoryShare}}) {
    const double empty = median(bare, row.value);
    const double full = median(installer, row.value);
    isWithin = isWithin && full <= empty * row.share;
    std::printf("%-28s %10.1f %10.1f %7.2f %7.2f\n", row.name, empty, full, full / empty,
                row.share);
  }
  return isWithin ? 0 : 1;
}
