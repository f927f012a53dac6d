#include <cstdlib>
#include <string_view>

#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "installer/log_files.h"

namespace {
constexpr const char* kWriteDefaultsVariable = "TESSAL_INSTALLER_WRITE_HITOOLBOX_DEFAULTS";
constexpr platform::Seconds kFreshDelay{0.25};

bool isDefaultsWriteWanted() {
  const char* value = std::getenv(kWriteDefaultsVariable);
  return value && std::string_view(value) == "1";
}
}  // namespace

void ContentView::startActivation() {
  // As after a run of the script over the same bundle: another account has its settings
  // application already.
  installPathExistedBeforeStart = TessalInstaller().isInstalled();
  isInstalling = true;
  installationStatus = InstallationStatus::installing;
  postInstallActivation();
}

void ContentView::postInstallActivation() {
  const TessalInstaller installer;
  if (!installer.isInstalled()) {
    installationStatus = InstallationStatus::failed("未检测到已安装的输入法");
    isInstalling = false;
    return;
  }
  shouldLaunchSettingsBootstrapOnSuccess = !installPathExistedBeforeStart;

  // Asked once. This answer alone decides between overwrite and fresh install, also
  // where a disabled copy was installed before.
  const bool isBaseEnabled = installer.isBaseEnabledBestEffort();
  appendUILog(isBaseEnabled ? kOverwriteInstall + std::string("（跳过 enable，仅 select）\n")
                            : "启用路径：全新安装（可能弹出“允许启用”提示）\n");
  // The observer is in place before anything is enabled, so no answer is missed.
  if (!isBaseEnabled) registerEnabledInputSourcesChangedNotificationIfNeeded();
  registerForActivationIfNeeded("");

  if (isBaseEnabled) {
    if (isDefaultsWriteWanted() && !didEnsureHIToolboxDefaultsOnce) {
      didEnsureHIToolboxDefaultsOnce = true;
      installer.ensureOrvaneEnabledInHIToolboxDefaults(kDefaultMode);
    }
    // The user's current input source is left alone. The result is ignored: the log
    // says ok=true in every case.
    installer.isSelected(kDefaultMode);
    appendUILog("已处理覆盖安装：跳过切换当前输入法（ok=true）\n");
    // This path restarts the agents before the observer goes; finalizeInstallSuccess()
    // then skips the restart.
    refreshTextInputAgentsOnce();
    finalizeInstallSuccess(/*refreshAgents=*/true);
    return;
  }

  installProgress.set(1.0, LinearAnimation{kFreshDelay});
  // The bar is seen to reach its end before the screen changes.
  platform::asyncOnMainAfter(kFreshDelay, [view = weak_from_this()] {
    const auto self = view.lock();
    if (!self) return;
    self->isInstalling = false;
    self->installationStatus = InstallationStatus::waitingEnable;
    // Before the waiting screen appears, which would make its own attempt.
    self->didAttemptFreshEnableOnce = true;
    self->attemptFreshEnable("enter-waiting");
  });
}

// Both registrations hold for the life of the window; a second run finds them done.
void ContentView::registerForActivationIfNeeded(std::string_view logSuffix) {
  if (!didRegisterForActivation) {
    TessalInstaller().registerBundle();
    didRegisterForActivation = true;
    appendUILog("已调用 TISRegisterInputSource" + std::string(logSuffix) + "\n");
  }
  if (!didRegisterLaunchServicesForActivation) {
    registerWithLaunchServicesIfPossible();
    didRegisterLaunchServicesForActivation = true;
    appendUILog("已调用 LSRegisterURL" + std::string(logSuffix) + "\n");
  }
}
