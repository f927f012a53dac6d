#include "app/window/window_close_interceptor.h"

#include <map>
#include <utility>

namespace {

std::map<std::string, platform::HandlerList<>>& observers() {
  static std::map<std::string, platform::HandlerList<>> instance;
  return instance;
}

}  // namespace

const std::string& requestExitConfirmNotification() {
  static const std::string name = "TessalInstaller.RequestExitConfirm";
  return name;
}

platform::Observation observeNotification(const std::string& name, std::function<void()> handler) {
  return observers()[name].add(std::move(handler));
}

bool WindowCloseInterceptor::windowShouldClose() const {
  if (!shouldBlockClose) return true;
  observers()[requestExitConfirmNotification()].call();
  return false;
}
