// What the view does on the window's behalf as long as it lives.

#include "installer/content_view.h"
#include "platform/application.h"

void ContentView::watchWindowHooks() {
  waitingEnableWatch_ = installationStatus.observe([this](const InstallationStatus& status, auto) {
    closeInterceptor.get()->setShouldBlockClose(status.is(InstallationStatus::waitingEnable));
  });
  exitConfirmObserver_ = observeNotification(requestExitConfirmNotification(),
                                             [this] { showExitEnableConfirm = true; });
}

void ContentView::userPressedExit() {
  showExitEnableConfirm = false;
  platform::terminateApplication();
}
