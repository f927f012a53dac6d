#include "inputsource/tessal_installer.h"
#include "installer/authorisation.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/admin_script.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/common/admin_script_source.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

void ContentView::userPressedInstall() {
  isInstalling = true;
  didTriggerActivation = false;
  startInstallation();
}

void ContentView::userPressedRetryAuthorisation() {
  isInstalling = true;
  startInstallation();
}

void ContentView::startInstallation() {
  installProgress = 0.0;
  installationStatus = InstallationStatus::installing;
  didAttemptFreshEnableOnce = false;
  showExitEnableConfirm = false;
  didDisableAllForFreshEnable = false;
  lastEnableBaseRequestAt = std::nullopt;
  enablePollingTimer = nullptr;
  didEnsureHIToolboxDefaultsOnce = false;
  didRefreshTextInputAgentsOnce = false;
  didLaunchSettingsBootstrap = false;
  shouldLaunchSettingsBootstrapOnSuccess = false;

  installPathExistedBeforeStart = TessalInstaller().isInstalled();

  platform::emptyLogFile(platform::onDisk(kUILogPath));

  const auto script = platform::bundleResource("install", "sh");
  if (!script) {
    installationStatus = InstallationStatus::failed("找不到安装脚本 install.sh");
    isInstalling = false;
    appendUILog(std::string(kNoScript) + "，请将其加入 Copy Bundle Resources\n");
    return;
  }

  platform::emptyLogFile(platform::onDisk(kInstallLogPath));
  const auto tail = startFollowingInstallLog();

  const std::string source = platform::composeAdminScriptSource({script->string(), adminPrompt()});
  platform::asyncOnWorker([view = weak_from_this(), tail, source] {
    const auto error = platform::executeAdminScript(source);
    // These blocks alone own the follower, so it ends with its run. If the view owned
    // it, a second run would wait on the main thread for the end of the first one.
    platform::asyncOnMain([view, tail, error] {
      if (tail->isRunning()) tail->terminate();
      const auto self = view.lock();
      if (!self) return;
      std::erase_if(self->tails_, [&](const auto& each) { return each.lock() == tail; });
      self->finishPrivilegedRun(error);
      self->scriptEndObservers_.call();
    });
  });
}

platform::Observation ContentView::observeScriptEnd(std::function<void()> handler) {
  return scriptEndObservers_.add(std::move(handler));
}

void ContentView::finishPrivilegedRun(const std::optional<platform::AdminScriptError>& error) {
  if (error) {
    // isInstalling stays true: the screen keeps showing how far the run came.
    if (isAuthorisationRefused(*error)) {
      installationStatus = InstallationStatus::needAdmin;
      return;
    }
    installationStatus = InstallationStatus::failed("安装失败");
    appendUILog(kScriptFailed + error->message.value_or("") + "\n");
    return;
  }
  if (!didTriggerActivation) triggerActivation();
}
