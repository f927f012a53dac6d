#include "cli/installation_front.h"

#include "platform/admin_script.h"
#include "platform/program.h"

int InstallationFront::run(const std::function<void(ContentView&)>& begin) {
  platform::asyncOnMain([this, begin] { start(begin); });
  const int status = platform::runMainLoop();
  output_.result(status);
  return status;
}

void InstallationFront::start(const std::function<void(ContentView&)>& begin) {
  platform::onTerminationRequest([this] { terminationRequested(); });
  const auto showProgress = [this] { output_.progress(view_->installProgress); };
  progressWatch_ = view_->installProgress.observe([showProgress](double, auto) { showProgress(); });
  installingWatch_ = view_->isInstalling.observe([showProgress](bool, auto) { showProgress(); });
  activationWatch_ = view_->didTriggerActivation.observe([this](bool isTriggered, auto) {
    if (isTriggered) output_.phase("activation");
  });
  statusWatch_ = view_->installationStatus.observe(
      [this](const InstallationStatus& status, auto) { statusChanged(status); });
  begin(*view_);
}

void InstallationFront::statusChanged(const InstallationStatus& status) {
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

void InstallationFront::startWaiting() {
  output_.progress(view_->installProgress);
  if (options_.noWait || isAskedToLeave_) {
    output_.say("已安装，尚未启用");
    return leaveSoon(kLeftWhileWaiting);
  }
  output_.phase("waiting");
  output_.say("为了正常使用，请将「澄枫输入法」添加到输入法列表");
  view_->enableWaitingViewDidAppear();
  if (options_.goEnable) view_->userPressedGoEnable();
}

void InstallationFront::terminationRequested() {
  isAskedToLeave_ = true;
  if (!view_) return;
  if (view_->installationStatus->is(InstallationStatus::waitingEnable)) {
    output_.say("已安装，尚未启用");
    return leaveSoon(kLeftWhileWaiting);
  }
  // The run goes on: how the script ends now decides its result.
  if (platform::interruptAdminScript()) return;
  output_.complain("安装脚本仍以管理员权限运行，无法中止");
  leaveSoon(kFailed);
}

/// Leaves when all that is on the main queue now has run. The last pieces of the
/// log may be part of that.
void InstallationFront::leaveSoon(ExitStatus status) {
  platform::asyncOnMain([this, status] {
    if (view_) leave(status);
  });
}

void InstallationFront::leave(ExitStatus status) {
  view_->enableWaitingViewDidDisappear();
  progressWatch_.reset();
  installingWatch_.reset();
  activationWatch_.reset();
  statusWatch_.reset();
  view_.reset();
  platform::endMainLoop(status);
}
