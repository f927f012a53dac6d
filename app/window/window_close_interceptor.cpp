#include "app/window/window_close_interceptor.h"

#include "app/window/notification_center.h"

const std::string& requestExitConfirmNotification() {
  static const std::string name = "TessalInstaller.RequestExitConfirm";
  return name;
}

bool WindowCloseInterceptor::windowShouldClose() const {
  if (!shouldBlockClose_) return true;
  postNotification(requestExitConfirmNotification());
  return false;
}
