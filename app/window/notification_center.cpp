#include "app/window/notification_center.h"

#include <map>
#include <utility>
#include <vector>

namespace {
using Handler = std::function<void()>;

std::multimap<std::string, std::weak_ptr<Handler>>& observers() {
  static std::multimap<std::string, std::weak_ptr<Handler>> instance;
  return instance;
}
}  // namespace

NotificationToken observeNotification(const std::string& name, std::function<void()> handler) {
  auto shared = std::make_shared<Handler>(std::move(handler));
  std::erase_if(observers(), [](const auto& entry) { return entry.second.expired(); });
  observers().emplace(name, shared);
  return shared;
}

void postNotification(const std::string& name) {
  std::vector<std::shared_ptr<Handler>> called;
  const auto [first, last] = observers().equal_range(name);
  for (auto entry = first; entry != last; ++entry)
    if (auto handler = entry->second.lock()) called.push_back(std::move(handler));
  for (const auto& handler : called) (*handler)();
}
