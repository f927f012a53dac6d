// Handlers that are called when something happens.

#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace platform {

/// Keeps a handler registered. To destroy it is to remove the handler, also from
/// inside the handler's own call. The caller who registered the handler owns it.
using Observation = std::shared_ptr<void>;

/// A list of handlers. One thread uses it.
template <class... Arguments>
class HandlerList {
 public:
  using Handler = std::function<void(Arguments...)>;

  /// Adds a handler; it stays for as long as the result lives.
  [[nodiscard]] Observation add(Handler handler) {
    std::erase_if(handlers_, [](const auto& weak) { return weak.expired(); });
    auto shared = std::make_shared<Handler>(std::move(handler));
    handlers_.push_back(shared);
    return shared;
  }

  /// Calls the handlers in the order in which they were added: those that are
  /// registered now and still are when their turn comes.
  void call(Arguments... arguments) const {
    // A copy of the list, as a handler may add or remove others.
    for (const auto& weak : std::vector(handlers_))
      if (const auto handler = weak.lock()) (*handler)(arguments...);
  }

 private:
  std::vector<std::weak_ptr<Handler>> handlers_;
};

}  // namespace platform
