#include "app/window/notification_center.h"

#include <map>
#include <utility>

namespace {

std::map<std::string, platform::HandlerList<>>& observers() {
  static std::map<std::string, platform::HandlerList<>> instance;
  return instance;
}

}  // namespace

platform::Observation observeNotification(const std::string& name, std::function<void()> handler) {
  return observers()[name].add(std::move(handler));
}

void postNotification(const std::string& name) {
  observers()[name].call();
}
