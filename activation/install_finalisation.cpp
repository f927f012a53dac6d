#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "platform/file_root.h"
#include "platform/workspace.h"

namespace {
constexpr LinearAnimation kSuccessAnimation{platform::Seconds(0.3)};
}  // namespace

void ContentView::finalizeInstallSuccess(bool /*refreshAgents*/) {
  // First: restarting the agents below may post the notification once more.
  removeEnabledInputSourcesChangedNotificationIfNeeded();
  installProgress.set(1.0, kSuccessAnimation);
  installationStatus = InstallationStatus::success;
  isInstalling = false;
  refreshTextInputAgentsOnce();
  launchSettingsBootstrapIfNeeded();
}

// The menu of input sources is drawn by these agents; they show the new one only
// after a restart. A notification and a poll may both get here.
void ContentView::refreshTextInputAgentsOnce() {
  if (didRefreshTextInputAgentsOnce) return;
  didRefreshTextInputAgentsOnce = true;
  runCommand("/usr/bin/killall", {"-9", "TextInputMenuAgent"});
  runCommand("/usr/bin/killall", {"-9", "TextInputSwitcher"});
}

void ContentView::launchSettingsBootstrapIfNeeded() {
  // Only a first install shows the settings: an update must not open windows.
  if (!shouldLaunchSettingsBootstrapOnSuccess || didLaunchSettingsBootstrap) return;
  // Set before trying: a failed launch is not retried.
  didLaunchSettingsBootstrap = true;

  const TessalInstaller installer;
  if (const auto bundled = installer.bundledSettingsApplication()) {
    platform::openApplication(*bundled);
    appendUILog("已拉起设置应用（首装 bootstrap）\n");
  } else if (const auto found = installer.otherSettingsApplication()) {
    platform::openApplication(*found);
    appendUILog("已拉起设置应用（首装 bootstrap，fallback）\n");
  } else {
    appendUILog("首装 bootstrap：未找到设置应用，跳过\n");
  }
}

void ContentView::registerWithLaunchServicesIfPossible() {
  if (!TessalInstaller().isInstalled()) return;
  platform::registerWithLaunchServices(platform::onDisk(TessalInstaller::appDir()),
                                       /*inUpdate=*/true);
}
