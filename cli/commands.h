// The commands of orvane-install. Each runs on the main thread before any main
// loop, runs one of its own if it needs one, tells `output` what happens, and
// returns the exit status.

#pragma once

#include "cli/event_output.h"

enum ExitStatus {
  kSuccess = 0,
  kFailed = 1,
  kRefused = 2,
  kLeftWhileWaiting = 3,
};

/// What to do while the user has not allowed the input method yet.
struct WaitOptions {
  /// Ask once more and open the keyboard settings.
  bool goEnable = false;
  /// Leave.
  bool noWait = false;
};

/// Runs the installation script, then activates the input method.
int runInstall(EventOutput& output, const WaitOptions& options);

/// Activates, for this user, an input method that is there already. With `once`
/// this does nothing for a user for whom it has succeeded before.
int runActivate(EventOutput& output, const WaitOptions& options, bool once);

/// Looks at the installation and changes nothing; at what all users share only, if
/// `machineOnly`.
int runDoctor(EventOutput& output, bool machineOnly);

struct UninstallOptions {
  /// Ask no question.
  bool yes = false;
  /// Remove the user's dictionary and settings as well.
  bool purge = false;
};
int runUninstall(EventOutput& output, const UninstallOptions& options);
