#pragma once

#include <string>

/// The text of the notification that asks the main view to show the exit
/// confirmation.
const std::string& requestExitConfirmNotification();

/// Answers for the window whether the user may close it. Main thread.
class WindowCloseInterceptor {
 public:
  bool shouldBlockClose() const { return shouldBlockClose_; }
  void setShouldBlockClose(bool block) { shouldBlockClose_ = block; }

  /// Whether the window may close; if not, posts requestExitConfirmNotification.
  bool windowShouldClose() const;

 private:
  bool shouldBlockClose_ = false;
};
