// What must hold at every moment of an installation.

#pragma once

#include <deque>
#include <optional>
#include <stdexcept>
#include <string>

#include "installer/content_view.h"
#include "tests/platform/test_platform.h"

namespace simulation {

/// A rule does not hold; the text says which.
struct Broken : std::runtime_error {
  using std::runtime_error::runtime_error;
};
inline void require(bool holds, const std::string& rule) {
  if (!holds) throw Broken(rule);
}

/// Compares each state with the one before. It learns from outside what the view
/// cannot know; all else it reads from the journal, the log and the state.
class Invariants {
 public:
  Invariants(const test::Platform& platform, const ContentView& view);

  // What is about to happen, or has happened outside the view.
  void runStarts(bool isBundleThere, bool isScriptPending, bool keepsActivation);
  void pieceRead(const std::string& text);
  void scriptEnded(bool hasFailed);
  void enabledWasAsked(bool answer);
  void closeWasAsked(bool mayClose);
  void goEnablePressed();

  /// After each block of the main queue and each call from outside.
  void check();
  /// The file, which is dear to read: at the end of a run.
  void checkUILog() const;
  /// The view has had everything that it can wait for.
  void checkSettled() const;

 private:
  struct Run {
    bool wasBundleThere = false;
    bool keepsActivation = false;
    /// An earlier run's script, observer or piece is still there, or the script said "finish"
    /// and then failed, or a notification has ended the run early: each moves the status on.
    bool isOvertaken = false;
    bool hasSaidFinish = false, hasFailed = false;
    int activations = 0, paths = 0, disableAlls = 0, settings = 0, opened = 0;
    int baseDisables = 0, modeDisables = 0, menuRestarts = 0, switcherRestarts = 0;
    std::optional<double> enabledAt;
  };
  void checkLog();
  void checkJournal();
  void checkCall(const std::string& line);
  void checkNotifications();
  void checkStatus();
  void checkFields();
  bool is(InstallationStatus::Case value) const { return view_.installationStatus->is(value); }

  const test::Platform& platform_;
  const ContentView& view_;
  Run run_;

  // As of the last check.
  InstallationStatus status_{InstallationStatus::notStarted};
  double progress_ = 0.0;
  bool isInstalling_ = false, isConfirmShown_ = false;
  std::size_t journalSize_ = 0, logSize_ = 0;
  std::optional<platform::WallClock::time_point> handledAt_;

  // Of this check.
  bool isStart_ = false, isPoll_ = false, wasAsked_ = false, answered_ = false;
  bool hasActivated_ = false, isOverwrite_ = false, isCloseRefused_ = false;
  std::string piece_;
  std::string lastCall_;

  std::deque<std::string> pieces_;
  std::string uiLog_;
  std::deque<double> waitingDue_, settingsDue_;
  std::optional<double> handlerDue_;
  bool isHandlerExcused_ = false;
  int failuresDue_ = 0, notifications_ = 0, registrations_ = 0, launchServices_ = 0;
  int settingsOpened_ = 0;
};

}  // namespace simulation
