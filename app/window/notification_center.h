// Notifications within this process: a name, no object, no user info.

#pragma once

#include <functional>
#include <memory>
#include <string>

/// Keeps an observer registered; to destroy it is to remove the observer.
using NotificationToken = std::shared_ptr<void>;

/// Calls `handler` on every post of `name`. Main thread.
[[nodiscard]] NotificationToken observeNotification(const std::string& name,
                                                    std::function<void()> handler);

/// Calls the observers of `name` before it returns. Main thread.
void postNotification(const std::string& name);
