// The command-line front: one installation, shown in the terminal.

#include <unistd.h>

#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include "cli/program_options.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/admin_script.h"
#include "platform/file_root.h"
#include "platform/program.h"

namespace {

enum ExitStatus {
  kSuccess = 0,
  kFailed = 1,
  kRefused = 2,
  kLeftWhileWaiting = 3,
};

struct Options {
  bool goEnable = false;
  bool noWait = false;
};

/// One installation in the terminal. Lives on the main queue.
class TerminalFront {
 public:
  explicit TerminalFront(Options options)
      : options_(options), isTerminal_(::isatty(STDOUT_FILENO) == 1) {}

  void start() {
    platform::onTerminationRequest([this] { terminationRequested(); });
    progressWatch_ = view_->installProgress.observe([this](double, auto) { showProgress(); });
    installingWatch_ = view_->isInstalling.observe([this](bool, auto) { showProgress(); });
    statusWatch_ = view_->installationStatus.observe(
        [this](const InstallationStatus& status, auto) { statusChanged(status); });
    view_->userPressedInstall();
  }

 private:
  void statusChanged(const InstallationStatus& status) {
    switch (status.value()) {
      case InstallationStatus::notStarted:
      case InstallationStatus::installing:
        return;
      case InstallationStatus::waitingEnable:
        return startWaiting();
      case InstallationStatus::success:
        showProgress();
        view_->enableWaitingViewDidDisappear();
        say("安装成功");
        return leaveSoon(kSuccess);
      case InstallationStatus::needAdmin:
        complain("未获得管理员授权，安装未进行");
        return leaveSoon(kRefused);
      case InstallationStatus::failed:
        complain(status.message());
        complain("日志：" + platform::onDisk(kUILogPath).string());
        return leaveSoon(kFailed);
    }
  }

  void startWaiting() {
    showProgress();
    if (options_.noWait || isAskedToLeave_) {
      say("已安装，尚未启用");
      return leaveSoon(kLeftWhileWaiting);
    }
    say("为了正常使用，请将「澄枫输入法」添加到输入法列表");
    view_->enableWaitingViewDidAppear();
    if (options_.goEnable) view_->userPressedGoEnable();
  }

  void terminationRequested() {
    isAskedToLeave_ = true;
    if (!view_) return;
    if (view_->installationStatus->is(InstallationStatus::waitingEnable)) {
      say("已安装，尚未启用");
      return leaveSoon(kLeftWhileWaiting);
    }
    // How the script ends now decides the result.
    if (platform::interruptAdminScript()) return;
    complain("安装脚本仍以管理员权限运行，无法中止");
    leaveSoon(kFailed);
  }

  /// Leaves when all that is on the main queue now has run. The last pieces of the
  /// log may be part of that.
  void leaveSoon(ExitStatus status) {
    platform::asyncOnMain([this, status] {
      if (view_) leave(status);
    });
  }

  void leave(ExitStatus status) {
    view_->enableWaitingViewDidDisappear();
    progressWatch_.reset();
    installingWatch_.reset();
    statusWatch_.reset();
    view_.reset();
    platform::endMainLoop(status);
  }

  void showProgress() {
    const double progress = view_->installProgress;
    const int percent = static_cast<int>(progress * 100);
    const std::string text = "正在安装 " + std::to_string(percent) + "%";
    if (text == shown_) return;
    shown_ = text;
    if (!isTerminal_) {
      std::cout << text << std::endl;
      return;
    }
    constexpr int kCells = 40;
    const int filled = static_cast<int>(std::lround(progress * kCells));
    std::cout << "\r\033[K[" << std::string(filled, '=') << std::string(kCells - filled, ' ')
              << "] " << text << std::flush;
    isLineOpen_ = true;
  }

  void endLine() {
    if (std::exchange(isLineOpen_, false)) std::cout << std::endl;
  }
  void say(const std::string& line) {
    endLine();
    std::cout << line << std::endl;
  }
  void complain(const std::string& line) {
    endLine();
    std::cerr << line << std::endl;
  }

  Options options_;
  bool isTerminal_;
  bool isAskedToLeave_ = false;
  bool isLineOpen_ = false;
  std::string shown_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  platform::Observation progressWatch_;
  platform::Observation installingWatch_;
  platform::Observation statusWatch_;
};

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App program("Installs the input method and waits until it is enabled.", "orvane-install");
  program.add_flag("--go-enable", options.goEnable,
                   "ask for enabling once more and open the keyboard settings");
  program.add_flag("--no-wait", options.noWait, "leave instead of waiting for the user's approval");
  program.footer(
      "Exit status: 0 installed and enabled, 1 failed, 2 authorisation refused,\n"
      "3 left while waiting for approval, 64 bad usage.");
  addCommonOptions(program);
  if (const auto status = parseArguments(program, argc, argv)) return *status;

  TerminalFront front(options);
  platform::asyncOnMain([&front] { front.start(); });
  return platform::runMainLoop();
}
