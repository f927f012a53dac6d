#include "platform/program.h"

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
  if (error)
    return directory + (error == std::errc::not_a_directory ? " 不是文件夹" : "：没有这个文件夹");
  // The toolkit would turn it into another path.
  const std::string path = folder.string();
  if (!utf8::is_valid(path.begin(), path.end())) return "文件夹的路径不是 UTF-8";
  use(folder);
  return std::nullopt;
}

}  // namespace

std::vector<PlatformOption> platformOptions() {
  return {{"--root", "DIR", "一切都放在 DIR 之下，并以当前用户运行脚本；/ 表示真实的位置",
           [](const std::string& folder) { return useFolder(folder, linux_::setFileRoot); }},
          {"--home", "DIR", "用户自己的数据放在 DIR，相当于另一个账户",
           [](const std::string& folder) { return useFolder(folder, linux_::setUserStore); }}};
}

std::optional<std::string> missingOption() {
  // Nobody installs into a developer's machine by leaving something out.
  if (linux_::isFileRootGiven()) return std::nullopt;
  return "缺少 --root DIR（--root / 表示真实的位置）";
}

int runMainLoop() {
  static int argc = 1;
  static std::array<char, 8> name = {"orvane"};
  static std::array<char*, 2> argv = {name.data(), nullptr};
  QCoreApplication application(argc, argv.data());
  return QCoreApplication::exec();
}

void endMainLoop(int status) {
  QCoreApplication::exit(status);
}

void onTerminationRequest(Block block) {
  static Block latest;
  const bool isFirst = !latest;
  latest = std::move(block);
  if (!isFirst) return;
  // The way of a signal out of its handler.
  static const Pipe pipe = makePipe();
  // Once there is an application to watch it.
  asyncOnMain([] {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the application owns it
    const auto* notifier = new QSocketNotifier(pipe.readEnd.get(), QSocketNotifier::Read,
                                               QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, [] {
      char signal = 0;
      if (::read(pipe.readEnd.get(), &signal, 1) == 1) asyncOnMain(latest);
    });
  });
  struct sigaction action {};
  action.sa_handler = [](int /*signal*/) {
    [[maybe_unused]] const auto written = ::write(pipe.writeEnd.get(), "", 1);
  };
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) ::sigaction(signal, &action, nullptr);
  // When the reader of our output goes, the run goes on. Not SIG_IGN, which children
  // would inherit.
  ::signal(SIGPIPE, [](int /*signal*/) {});
}

}  // namespace platform
