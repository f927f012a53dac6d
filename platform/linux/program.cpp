#include "platform/program.h"

#include <fcntl.h>
#include <unistd.h>
#include <utf8.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/file_root_linux.h"
#include "platform/posix/descriptor.h"

namespace platform {
namespace {

[[noreturn]] void endWithReason() noexcept {
  const char* reason = "out of order";
  try {
    if (const auto error = std::current_exception()) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    reason = "out of memory";
  } catch (const std::exception& error) {
    reason = error.what();
  } catch (...) {
  }
  std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, reason);
  std::_Exit(EXIT_FAILURE);
}

/// The null device for each standard stream that is closed.
void openStandardStreams() {
  int descriptor = 0;
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) descriptor = ::open("/dev/null", O_RDWR);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
}

/// Makes the folder of an option, with `inside` in it, and hands it to `use`.
std::optional<std::string> useFolder(const std::string& option, const std::string& directory,
                                     const std::string& inside,
                                     void (*use)(const std::filesystem::path&)) {
  if (directory.empty() || directory.starts_with("-")) return option + " needs a folder";
  // The toolkit would turn it into another path.
  if (!utf8::is_valid(directory.begin(), directory.end()))
    return option + ": the path is not UTF-8";
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  const auto folder =
      error ? std::filesystem::path() : std::filesystem::canonical(directory, error);
  if (!error) std::filesystem::create_directories(folder / inside, error);
  if (error) return option + " " + directory + ": " + error.message();
  if (const std::string path = folder.string(); !utf8::is_valid(path.begin(), path.end()))
    return option + ": the path leads to one that is not UTF-8";
  use(folder);
  return std::nullopt;
}
std::optional<std::string> useRoot(const std::string& directory) {
  return useFolder("--root", directory, "tmp", linux_::setFileRoot);
}
std::optional<std::string> useHome(const std::string& directory) {
  return useFolder("--home", directory, "", linux_::setUserStore);
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

std::optional<std::string> prepareProcess() {
  openStandardStreams();
  std::set_terminate(endWithReason);
  // The toolkit aborts, or waits for ever, when it gets no descriptor or thread.
  constexpr std::size_t kDescriptors = 48;
  std::array<Descriptor, kDescriptors> reserve;
  for (Descriptor& descriptor : reserve) {
    descriptor = Descriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!descriptor) return std::string("no file can be opened: ") + std::strerror(errno);
  }
  try {
    std::thread([] {}).join();
  } catch (const std::system_error& error) {
    return "no thread can be started: " + error.code().message();
  }
  return std::nullopt;
}

std::vector<PlatformOption> platformOptions() {
  return {{"--root", "DIR", "keep everything below DIR and run the script as this user", useRoot},
          {"--home", "DIR", "keep the user's own stores in DIR, as another account's", useHome}};
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
