#include <utf8.h>

#include <filesystem>
#include <memory>

#include "inputsource/tessal_installer.h"
#include "installer/admin_script_source.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/file_root.h"

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

  emptyFile(platform::onDisk(kUILogPath));

  const auto script = platform::bundleResource("install", "sh");
  if (!script) {
    installationStatus = InstallationStatus::failure("找不到安装脚本 install.sh");
    isInstalling = false;
    appendUILog("未找到 install.sh，请将其加入 Copy Bundle Resources\n");
    return;
  }

  const std::filesystem::path installLog = platform::onDisk(kInstallLogPath);
  emptyFile(installLog);

  const std::weak_ptr<ContentView> view = weak_from_this();
  const auto tail = std::make_shared<platform::ChildProcess>(
      "/usr/bin/tail", std::vector<std::string>{"-n", "+1", "-F", installLog.string()},
      [view](std::string_view piece) {
        // A piece that does not decode is dropped: nothing may be shown garbled.
        if (piece.empty() || !utf8::is_valid(piece.begin(), piece.end())) return;
        platform::async([view, text = std::string(piece)] {
          if (const auto self = view.lock()) self->handleInstallLogChunk(text);
        });
      });
  tail_ = tail;
  if (const auto problem = tail->launch()) appendUILog("无法启动日志跟踪: " + *problem + "\n");

  const std::string source =
      adminScriptSource(script->string(), adminPrompt(platform::bundleLocation()));
  platform::asyncOnWorker([view, tail, source] {
    const auto error = platform::executeAdminScript(source);
    platform::async([view, tail, error] {
      if (tail->isRunning()) tail->terminate();
      if (const auto self = view.lock()) self->finishPrivilegedRun(error);
    });
  });
}

void ContentView::finishPrivilegedRun(const std::optional<platform::AdminScriptError>& error) {
  if (error) {
    // isInstalling stays true: the screen keeps showing how far the run came.
    const std::string message = error->message.value_or("");
    if (isAuthorisationRefused(error->number, message)) {
      installationStatus = InstallationStatus::needAdmin;
      return;
    }
    installationStatus = InstallationStatus::failure("安装失败");
    appendUILog("管理员授权失败: " + message + "\n");
    return;
  }
  if (!didTriggerActivation) triggerActivation();
}
