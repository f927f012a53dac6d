// Notifications within this process: a name, no object, no user info.

#pragma once

#include <functional>
#include <string>

#include "platform/handler_list.h"

/// Calls `handler` on every post of `name`, until the result is destroyed. Main
/// thread.
[[nodiscard]] platform::Observation observeNotification(const std::string& name,
                                                        std::function<void()> handler);

/// Calls the observers of `name` before it returns. Main thread.
void postNotification(const std::string& name);
