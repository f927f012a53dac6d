// An installation, or an activation alone, in the terminal.

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/diagnosis.h"
#include "cli/installed_files.h"
#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/admin_script.h"
#include "platform/file_root.h"
#include "platform/log_file.h"
#include "platform/program.h"

namespace {

using InstallationStatus = ContentView::InstallationStatus;

/// Shows one run of a view and waits for its end. Lives on the main queue.
class InstallationRun {
 public:
  enum class Kind { installation, activation };

  InstallationRun(EventOutput& output, const WaitOptions& options, Kind kind)
      : output_(output), options_(options), isActivation_(kind == Kind::activation) {}

  /// Runs the main loop from the beginning to the end of the run. The exit status.
  int run() {
    platform::asyncOnMain([this] { start(); });
    const int status = platform::runMainLoop();
    output_.result(status);
    return status;
  }

 private:
  void start() {
    platform::onTerminationRequest([this] { terminationRequested(); });
    const auto showProgress = [this](auto, auto) { output_.progress(view_->installProgress); };
    watches_ = {view_->installProgress.observe(showProgress),
                view_->isInstalling.observe(showProgress),
                view_->observeScriptEnd([this] { leaveIfDone(); }),
                view_->didTriggerActivation.observe([this](bool isTriggered, auto) {
                  if (isTriggered) output_.phase("activation");
                }),
                view_->installationStatus.observe(
                    [this](const InstallationStatus& status, auto) { statusChanged(status); })};
    isActivation_ ? view_->startActivation() : view_->userPressedInstall();
  }

  void statusChanged(const InstallationStatus& status) {
    if (isActivation_ && status.is(InstallationStatus::success) &&
        TessalInstaller().enabledModes().empty())
      return statusChanged(InstallationStatus::failed("输入法已启用，但拼音模式没有启用"));
    output_.status(status);
    switch (status.value()) {
      case InstallationStatus::notStarted:
      case InstallationStatus::installing:
        return;
      case InstallationStatus::waitingEnable:
        return startWaiting();
      case InstallationStatus::success:
        output_.progress(view_->installProgress);
        view_->enableWaitingViewDidDisappear();
        return leave(kSuccess, isActivation_ ? "已启用" : "安装成功");
      case InstallationStatus::needAdmin:
        output_.complain("未获得管理员授权，安装未进行");
        return leaveSoon(kRefused);
      case InstallationStatus::Case::failed:
        output_.complain(isAskedToLeave_ ? "安装被中断" : status.message());
        if (!isAskedToLeave_) explainFailure();
        return leaveSoon(kFailed);
    }
  }

  /// Tells what the script, or the system in its place, has said last, and where to look.
  void explainFailure() {
    const std::string& log = view_->logText;
    if (const auto at = log.rfind(kScriptFailed); at != std::string::npos) {
      std::string reason = log.substr(at + std::string_view(kScriptFailed).size());
      std::replace(reason.begin(), reason.end(), '\r', '\n');  // macOS ends the lines so
      reason.erase(reason.find_last_not_of('\n') + 1);
      if (!reason.empty()) output_.complain(reason);
    }
    const auto file = platform::onDisk(kUILogPath);
    if (isActivation_ && !TessalInstaller().isInstalled())
      output_.complain("请先运行 orvane-install install 安装输入法");
    else if (isActivation_ || !platform::isOwnLogFile(file))
      output_.complain("运行 orvane-install doctor 查看原因");
    else
      output_.complain("日志：" + file.string());
  }

  void startWaiting() {
    output_.progress(view_->installProgress);
    if (options_.noWait || isAskedToLeave_) return leaveWaiting();
    output_.phase("waiting");
    output_.say("为了正常使用，请将「澄枫输入法」添加到输入法列表");
    output_.say(
        "正在等待：请在系统询问时点「好」，或在「系统设置 → 键盘 → 输入法」中添加；按 Ctrl-C "
        "可以退出");
    view_->enableWaitingViewDidAppear();
    if (options_.goEnable) view_->userPressedGoEnable();
  }

  void leaveWaiting() {
    leave(kLeftWhileWaiting, "已安装，尚未启用\n以后运行 orvane-install activate 启用");
  }

  /// Says this and leaves, once our own script has ended as well: the "finish" in the log
  /// may have been another installer's.
  void leave(ExitStatus status, const std::string& line) {
    wanted_ = {status, line};
    leaveIfDone();
  }

  void leaveIfDone() {
    const InstallationStatus& status = view_->installationStatus;
    const bool isInstalled =
        status.is(InstallationStatus::success) || status.is(InstallationStatus::waitingEnable);
    if (!wanted_ || view_->isScriptRunning() || !isInstalled) return;
    output_.say(wanted_->second);
    leaveSoon(std::exchange(wanted_, std::nullopt)->first);
  }

  void terminationRequested() {
    isAskedToLeave_ = true;
    if (!view_) return;
    if (!platform::interruptAdminScript()) {
      output_.complain("安装被中断；密码窗口或安装脚本还在，无法中止");
      return leaveSoon(kFailed);
    }
    // If the script was running, how it ends now decides the result.
    if (view_->installationStatus->is(InstallationStatus::waitingEnable)) leaveWaiting();
  }

  /// Leaves when all that is on the main queue now has run. The last pieces of the
  /// log may be part of that.
  void leaveSoon(ExitStatus status) {
    platform::asyncOnMain([this, status] {
      if (!view_) return;
      view_->enableWaitingViewDidDisappear();
      watches_.clear();
      view_.reset();
      platform::endMainLoop(status);
    });
  }

  EventOutput& output_;
  WaitOptions options_;
  bool isActivation_;
  bool isAskedToLeave_ = false;
  std::optional<std::pair<ExitStatus, std::string>> wanted_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  std::vector<platform::Observation> watches_;
};

}  // namespace

int runInstall(EventOutput& output, const WaitOptions& options) {
  output.phase("script");
  if (const auto notice = newerVersionNotice(); !notice.empty())
    output.say(notice + "，现在换成安装器里的版本");
  return InstallationRun(output, options, InstallationRun::Kind::installation).run();
}

int runActivate(EventOutput& output, const WaitOptions& options, bool once) {
  std::error_code error;
  if (once && std::filesystem::exists(activationStamp(), error)) {
    output.say("已为当前用户启用过，无需操作");
    output.result(kSuccess);
    return kSuccess;
  }
  output.phase("activation");
  const int status = InstallationRun(output, options, InstallationRun::Kind::activation).run();
  // Without the note the next login does this again, which harms nothing.
  if (status == kSuccess) std::filesystem::create_directories(activationStamp(), error);
  return status;
}
