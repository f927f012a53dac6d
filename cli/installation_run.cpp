// An installation, or an activation alone, in the terminal.

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/installed_files.h"
#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "platform/admin_script.h"
#include "platform/file_root.h"
#include "platform/log_file.h"
#include "platform/program.h"

namespace {

/// Shows one run of a view and waits for its end. Lives on the main queue.
class InstallationRun {
 public:
  /// What the user reads at the end.
  struct Texts {
    std::string success;
    /// Follows the message of a failure.
    std::string failureHint;
  };

  InstallationRun(EventOutput& output, const WaitOptions& options, Texts texts)
      : output_(output), options_(options), texts_(std::move(texts)) {}

  /// Runs the main loop from `begin` to the end of what it has begun. The exit
  /// status.
  int run(const std::function<void(ContentView&)>& begin) {
    platform::asyncOnMain([this, begin] { start(begin); });
    const int status = platform::runMainLoop();
    output_.result(status);
    return status;
  }

 private:
  void start(const std::function<void(ContentView&)>& begin) {
    platform::onTerminationRequest([this] { terminationRequested(); });
    const auto showProgress = [this] { output_.progress(view_->installProgress); };
    watches_.push_back(
        view_->installProgress.observe([showProgress](double, auto) { showProgress(); }));
    watches_.push_back(view_->isInstalling.observe([showProgress](bool, auto) { showProgress(); }));
    watches_.push_back(view_->didTriggerActivation.observe([this](bool isTriggered, auto) {
      if (isTriggered) output_.phase("activation");
    }));
    watches_.push_back(view_->installationStatus.observe(
        [this](const InstallationStatus& status, auto) { statusChanged(status); }));
    begin(*view_);
  }

  void statusChanged(const InstallationStatus& status) {
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
        output_.say(texts_.success);
        return leaveSoon(kSuccess);
      case InstallationStatus::needAdmin:
        output_.complain("未获得管理员授权，安装未进行");
        return leaveSoon(kRefused);
      case InstallationStatus::failed:
        output_.complain(status.message());
        output_.complain(texts_.failureHint);
        return leaveSoon(kFailed);
    }
  }

  void startWaiting() {
    output_.progress(view_->installProgress);
    if (options_.noWait || isAskedToLeave_) return leaveWaiting();
    output_.phase("waiting");
    output_.say("为了正常使用，请将「澄枫输入法」添加到输入法列表");
    view_->enableWaitingViewDidAppear();
    if (options_.goEnable) view_->userPressedGoEnable();
  }

  void leaveWaiting() {
    output_.say("已安装，尚未启用");
    leaveSoon(kLeftWhileWaiting);
  }

  void terminationRequested() {
    isAskedToLeave_ = true;
    if (!view_) return;
    if (view_->installationStatus->is(InstallationStatus::waitingEnable)) return leaveWaiting();
    // The run goes on: how the script ends now decides its result.
    if (platform::interruptAdminScript()) return;
    output_.complain("安装脚本仍以管理员权限运行，无法中止");
    leaveSoon(kFailed);
  }

  /// Leaves when all that is on the main queue now has run: the last pieces of the log may be part
  /// of that.
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
  Texts texts_;
  bool isAskedToLeave_ = false;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  std::vector<platform::Observation> watches_;
};

}  // namespace

int runInstall(EventOutput& output, const WaitOptions& options) {
  output.phase("script");
  InstallationRun run(output, options,
                      {"安装成功", "日志：" + platform::onDisk(kUILogPath).string()});
  return run.run([](ContentView& view) { view.userPressedInstall(); });
}

int runActivate(EventOutput& output, const WaitOptions& options, bool once) {
  std::error_code error;
  if (once && std::filesystem::exists(activationStamp(), error)) {
    output.say("已为当前用户启用过，无需操作");
    output.result(kSuccess);
    return kSuccess;
  }
  output.phase("activation");
  InstallationRun run(output, options, {"已启用", "请先运行 orvane-install install 安装输入法"});
  const int status = run.run([](ContentView& view) {
    // As after a run of the script over the same bundle: another account has its
    // settings application already.
    view.installPathExistedBeforeStart = TessalInstaller().isInstalled();
    view.isInstalling = true;
    view.installationStatus = InstallationStatus::installing;
    view.postInstallActivation();
  });
  if (status == kSuccess) {
    std::filesystem::create_directories(activationStamp().parent_path(), error);
    // Without the note the next login does this again, which harms nothing.
    platform::emptyLogFile(activationStamp());
  }
  return status;
}
