#pragma once

#include <functional>
#include <string>

#include "installer/state.h"

/// The name of the notification that asks the main view to show the exit confirmation.
const std::string& requestExitConfirmNotification();

/// Calls `handler` on every post of `name` within this process, until the result is
/// destroyed. Main thread.
[[nodiscard]] platform::Observation observeNotification(const std::string& name,
                                                        std::function<void()> handler);

/// Answers for the window whether the user may close it. Main thread.
class WindowCloseInterceptor {
 public:
  State<bool> shouldBlockClose{false};

  /// Whether the window may close. If not, posts requestExitConfirmNotification() first:
  /// its observers have been called when this returns.
  bool windowShouldClose() const;
};
