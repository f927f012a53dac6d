// What the view does on the window's behalf as long as it lives.

#include "app/window/window_close_interceptor.h"
#include "installer/content_view.h"
#include "platform/application.h"

void ContentView::watchWindowHooks() {
  waitingEnableWatch_ = installationStatus.observe([this](const InstallationStatus& status, auto) {
    closeInterceptor.get()->shouldBlockClose = status.is(InstallationStatus::waitingEnable);
  });
  exitConfirmObserver_ = observeNotification(requestExitConfirmNotification(),
                                             [this] { showExitEnableConfirm = true; });
}

void ContentView::userPressedExit() {
  showExitEnableConfirm = false;
  platform::terminateApplication();
}
