#include "platform/program.h"

#include <fcntl.h>
#include <unistd.h>
#include <utf8.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/file_root_linux.h"
#include "platform/posix/descriptor.h"

namespace platform {
namespace {

/// Hands an existing folder to `use`.
std::optional<std::string> useFolder(const std::string& directory,
                                     void (*use)(const std::filesystem::path&)) {
  std::error_code error;
  // With the slash at its end only a folder is found.
  const auto folder = std::filesystem::canonical(std::filesystem::path(directory) / "", error);
  if (error) return directory + ": " + error.message();
  // The toolkit would turn it into another path.
  const std::string path = folder.string();
  if (!utf8::is_valid(path.begin(), path.end())) return "the path of the folder is not UTF-8";
  use(folder);
  return std::nullopt;
}

/// Carries a signal out of its handler onto the main queue.
class TerminationSignals {
 public:
  static TerminationSignals& instance() {
    static TerminationSignals carrier;
    return carrier;
  }

  void onSignal(Block block) {
    block_ = std::move(block);
    if (pipe_.readEnd) return;
    pipe_ = makePipe();
    if (!pipe_.readEnd) return;
    for (const Descriptor* end : {&pipe_.readEnd, &pipe_.writeEnd})
      ::fcntl(end->get(), F_SETFL, O_NONBLOCK);
    // Once the main loop is there to watch it.
    asyncOnMain([this] {
      notifier_ = std::make_unique<QSocketNotifier>(pipe_.readEnd.get(), QSocketNotifier::Read);
      QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] {
        char signal = 0;
        while (::read(pipe_.readEnd.get(), &signal, 1) > 0) asyncOnMain(block_);
      });
    });
    struct sigaction action {};
    action.sa_handler = [](int signal) {
      const char byte = static_cast<char>(signal);
      [[maybe_unused]] const auto written = ::write(instance().pipe_.writeEnd.get(), &byte, 1);
    };
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
      ::sigaction(signal, &action, nullptr);
    // When the reader of our output goes, the run goes on.
    ::signal(SIGPIPE, SIG_IGN);
  }

  void stop() { notifier_.reset(); }

 private:
  Pipe pipe_;
  std::unique_ptr<QSocketNotifier> notifier_;
  Block block_;
};

}  // namespace

std::vector<PlatformOption> platformOptions() {
  return {{"--root", "DIR", "keep everything below DIR and run the script as this user",
           [](const std::string& folder) { return useFolder(folder, linux_::setFileRoot); }},
          {"--home", "DIR", "keep the user's own stores in DIR, as another account's",
           [](const std::string& folder) { return useFolder(folder, linux_::setUserStore); }}};
}

int runMainLoop() {
  static int argc = 1;
  static std::array<char, 8> name = {"orvane"};
  static std::array<char*, 2> argv = {name.data(), nullptr};
  QCoreApplication application(argc, argv.data());
  const int status = QCoreApplication::exec();
  TerminationSignals::instance().stop();
  return status;
}

void endMainLoop(int status) {
  QCoreApplication::exit(status);
}

void onTerminationRequest(Block block) {
  TerminationSignals::instance().onSignal(std::move(block));
}

}  // namespace platform
