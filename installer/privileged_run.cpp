#include <algorithm>
#include <filesystem>
#include <memory>

#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/bundle.h"
#include "platform/child_process.h"
#include "platform/common/admin_script_source.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

namespace {

/// What the password prompt says: the bundle's name without its extension, and
/// that it wants to make changes.
std::string adminPrompt(const std::filesystem::path& bundleLocation) {
  return bundleLocation.stem().string() + " 想要进行更改";
}

/// Upper and lower case of ASCII letters are the same; `phrase` is lower case.
bool containsIgnoringCase(std::string_view text, std::string_view phrase) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
  return std::search(text.begin(), text.end(), phrase.begin(), phrase.end(),
                     [&](char a, char b) { return lower(a) == b; }) != text.end();
}

/// Whether this failure means that the user has cancelled or was refused, rather
/// than that the script has failed.
bool isAuthorisationRefused(std::optional<int> number, const std::string& message) {
  return number == platform::kAdminScriptCancelled ||
         containsIgnoringCase(message, "user canceled") ||
         message.find("用户取消") != std::string::npos ||
         containsIgnoringCase(message, "not authorized");
}

}  // namespace

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
    installationStatus = InstallationStatus::failure("找不到安装脚本 install.sh");
    isInstalling = false;
    appendUILog("未找到 install.sh，请将其加入 Copy Bundle Resources\n");
    return;
  }

  platform::emptyLogFile(platform::onDisk(kInstallLogPath));
  const auto tail = startFollowingInstallLog();

  const std::string source = platform::composeAdminScriptSource(
      {script->string(), adminPrompt(platform::bundleLocation())});
  const auto handOver = [view = weak_from_this(),
                         tail](const std::optional<platform::AdminScriptError>& error) {
    // These blocks alone own the follower, so it ends with its run. If the view owned
    // it, a second run would wait on the main thread for the end of the first one.
    platform::asyncOnMain([view, tail, error] {
      if (tail->isRunning()) tail->terminate();
      if (const auto self = view.lock()) self->finishPrivilegedRun(error);
    });
  };
  const auto problem = platform::asyncOnWorker(
      [source, handOver] { handOver(platform::executeAdminScript(source)); });
  if (problem) handOver(platform::AdminScriptError{std::nullopt, *problem});
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
