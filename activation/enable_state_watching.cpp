#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"

namespace {
using InputMode = TessalInstaller::InputMode;
constexpr platform::Seconds kNotificationDebounce{0.35};
constexpr platform::Seconds kPollInterval{1.5};
constexpr platform::Seconds kPollStandsBack{3.0};
}  // namespace

void ContentView::registerEnabledInputSourcesChangedNotificationIfNeeded() {
  if (enableNotificationObserver.get()) return;
  enableNotificationObserver = platform::observeEnabledInputSourcesChanged([view =
                                                                                weak_from_this()] {
    const auto self = view.lock();
    if (!self) return;
    self->appendUILog("收到输入源启用状态更新（kTISNotifyEnabledKeyboardInputSourcesChanged）\n");
    if (const auto& pending = self->pendingEnableNotificationWorkItem.get()) pending->cancel();
    self->pendingEnableNotificationWorkItem =
        platform::scheduleWorkItem(kNotificationDebounce, [view] {
          if (const auto self = view.lock())
            self->handleEnabledKeyboardInputSourcesChanged(
                platform::kNotifyEnabledKeyboardInputSourcesChanged);
        });
  });
}

void ContentView::removeEnabledInputSourcesChangedNotificationIfNeeded() {
  enableNotificationObserver = nullptr;
  if (const auto& pending = pendingEnableNotificationWorkItem.get()) pending->cancel();
  pendingEnableNotificationWorkItem = nullptr;
}

void ContentView::handleEnabledKeyboardInputSourcesChanged(const std::string& trigger) {
  if (installationStatus->is(InstallationStatus::success) ||
      installationStatus->is(InstallationStatus::failed))
    return;
  lastEnabledNotificationAt = platform::now();
  const TessalInstaller installer;
  registerForActivationIfNeeded("（来自通知）");
  if (!installer.isSelected(InputMode::pinyin)) {
    const bool isSelectCallOk = installer.selectModeForOverwrite(InputMode::pinyin);
    appendUILog("已调用 TISSelectInputSource（来自通知：" + trigger +
                "，ok=" + (isSelectCallOk ? "true" : "false") + "）\n");
  }
  if (installer.isSelected(InputMode::pinyin)) finalizeInstallSuccess(/*refreshAgents=*/true);
}

void ContentView::startEnablePolling() {
  enablePollingTimer = nullptr;
  enablePollingTimer = platform::scheduleTimer(kPollInterval, [view = weak_from_this()] {
    platform::async([view] {
      if (const auto self = view.lock()) self->pollEnableState();
    });
  });
}

void ContentView::pollEnableState() {
  if (!installationStatus->is(InstallationStatus::waitingEnable)) return;
  // The notification path is in charge for a while after it has run.
  const auto& handled = lastEnabledNotificationAt.get();
  if (handled && platform::now() - *handled < kPollStandsBack) return;

  const TessalInstaller installer;
  if (installer.isSelected(InputMode::pinyin)) {
    finalizeInstallSuccess(/*refreshAgents=*/true);
  } else if (installer.isBaseEnabledBestEffort()) {
    installer.selectModeForOverwrite(InputMode::pinyin);
    if (installer.isSelected(InputMode::pinyin)) finalizeInstallSuccess(/*refreshAgents=*/true);
  }
}

void ContentView::enableWaitingViewDidAppear() {
  if (!didAttemptFreshEnableOnce) {
    didAttemptFreshEnableOnce = true;
    attemptFreshEnable("auto");
  }
  startEnablePolling();
}

void ContentView::enableWaitingViewDidDisappear() {
  enablePollingTimer = nullptr;
}
