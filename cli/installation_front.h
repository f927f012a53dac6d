// An installation, or an activation alone, in the terminal.

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "installer/content_view.h"

/// Shows one run of a view and waits for its end. Lives on the main queue.
class InstallationFront {
 public:
  /// What the user reads at the end.
  struct Texts {
    std::string success;
    /// Follows the message of a failure.
    std::string failureHint;
  };

  InstallationFront(EventOutput& output, const WaitOptions& options, Texts texts)
      : output_(output), options_(options), texts_(std::move(texts)) {}

  /// Runs the main loop from `begin` to the end of what it has begun. The exit
  /// status.
  int run(const std::function<void(ContentView&)>& begin);

 private:
  void start(const std::function<void(ContentView&)>& begin);
  void statusChanged(const InstallationStatus& status);
  void startWaiting();
  void terminationRequested();
  void leaveSoon(ExitStatus status);
  void leave(ExitStatus status);

  EventOutput& output_;
  WaitOptions options_;
  Texts texts_;
  bool isAskedToLeave_ = false;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  platform::Observation progressWatch_;
  platform::Observation installingWatch_;
  platform::Observation activationWatch_;
  platform::Observation statusWatch_;
};
