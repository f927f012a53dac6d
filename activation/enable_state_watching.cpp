#include "inputsource/tessal_installer.h"
#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/text_input_sources.h"

namespace {
constexpr platform::Seconds kNotificationDebounce{0.35};
constexpr platform::Seconds kPollInterval{1.5};
constexpr platform::Seconds kPollStandsBack{3.0};
}  // namespace

void ContentView::registerEnabledInputSourcesChangedNotificationIfNeeded() {
  // A second observer would handle each notification twice.
  if (enableNotificationObserver.get()) return;
  enableNotificationObserver =
      platform::observeEnabledInputSourcesChanged([view = weak_from_this()] {
        if (const auto self = view.lock()) self->scheduleNotificationHandling();
      });
}

void ContentView::scheduleNotificationHandling() {
  appendUILog("收到输入源启用状态更新（kTISNotifyEnabledKeyboardInputSourcesChanged）\n");
  // Notifications come in bursts. Only the last one of a burst is handled.
  if (const auto& pending = pendingEnableNotificationWorkItem.get()) pending->cancel();
  pendingEnableNotificationWorkItem =
      platform::scheduleWorkItem(kNotificationDebounce, [view = weak_from_this()] {
        if (const auto self = view.lock())
          self->handleEnabledKeyboardInputSourcesChanged(
              platform::kNotifyEnabledKeyboardInputSourcesChanged);
      });
}

void ContentView::removeEnabledInputSourcesChangedNotificationIfNeeded() {
  enableNotificationObserver = nullptr;
  // A notification may have come just before; its handling must not follow now.
  if (const auto& pending = pendingEnableNotificationWorkItem.get()) pending->cancel();
  pendingEnableNotificationWorkItem = nullptr;
}

void ContentView::handleEnabledKeyboardInputSourcesChanged(const std::string& trigger) {
  // Every other status is handled, not only waitingEnable: the user may answer before
  // the delayed step has set it.
  if (installationStatus->isOver()) return;
  // Stamped before the work, so that the poll stands back while this one acts.
  lastEnabledNotificationAt = platform::now();
  const TessalInstaller installer;
  registerForActivationIfNeeded("（来自通知）");
  if (!installer.isSelected(kDefaultMode)) {
    const bool isSelectCallOk = installer.selectModeForOverwrite(kDefaultMode);
    appendUILog("已调用 TISSelectInputSource（来自通知：" + trigger +
                (isSelectCallOk ? kModeSelected : "，ok=false）") + "\n");
  }
  // Asked afresh: a select call that answers 0 need not have taken effect yet.
  if (installer.isSelected(kDefaultMode)) finalizeInstallSuccess(/*refreshAgents=*/true);
}

void ContentView::startEnablePolling() {
  enablePollingTimer = nullptr;
  enablePollingTimer = platform::scheduleTimer(kPollInterval, [view = weak_from_this()] {
    platform::asyncOnMain([view] {
      if (const auto self = view.lock()) self->pollEnableState();
    });
  });
}

void ContentView::pollEnableState() {
  if (!installationStatus->is(InstallationStatus::waitingEnable)) return;
  // The poll stands back for a while after a notification has been handled: two
  // select calls at a time would disturb each other.
  const auto& handled = lastEnabledNotificationAt.get();
  if (handled && platform::now() - *handled < kPollStandsBack) return;

  const TessalInstaller installer;
  if (installer.isSelected(kDefaultMode)) {
    finalizeInstallSuccess(/*refreshAgents=*/true);
  } else if (installer.isBaseEnabledBestEffort()) {
    installer.selectModeForOverwrite(kDefaultMode);
    if (installer.isSelected(kDefaultMode)) finalizeInstallSuccess(/*refreshAgents=*/true);
  }
}

void ContentView::enableWaitingViewDidAppear() {
  // The delayed step of a fresh install has made the attempt already. This one is
  // for a screen that comes up without it.
  if (!didAttemptFreshEnableOnce) {
    didAttemptFreshEnableOnce = true;
    attemptFreshEnable("auto");
  }
  startEnablePolling();
}

void ContentView::enableWaitingViewDidDisappear() {
  enablePollingTimer = nullptr;
}
