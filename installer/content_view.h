#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "installer/state.h"

class WindowCloseInterceptor;
namespace platform {
class ChildProcess;
class HostWindow;
struct AdminScriptError;
}  // namespace platform

/// The installer's main view: all of its state and every operation on it. It lives
/// on the main thread, for as long as the window. The blocks that it puts on the
/// main queue hold it weakly: they do nothing once it is gone.
///
/// A field named `did…` guards an action that must not repeat. It is set when the
/// action is taken, and a failure of the action does not clear it. A new run clears
/// most of them, see startInstallation().
class ContentView : public std::enable_shared_from_this<ContentView> {
 public:
  // Where an installation stands.
  // clang-format off
  //
  // | status        | meaning                                   | entered from              | by                                                             |
  // |---------------|-------------------------------------------|---------------------------|----------------------------------------------------------------|
  // | notStarted    | nothing has been tried yet                | –                         | a new view                                                     |
  // | installing    | the script runs, or its result is handled | any                       | startInstallation, startActivation                             |
  // | needAdmin     | the password prompt was closed or refused | installing                | finishPrivilegedRun                                            |
  // | failed        | the run ended in an error, with a message | installing                | startInstallation, finishPrivilegedRun, postInstallActivation  |
  // | waitingEnable | installed; the user has to allow it       | installing                | postInstallActivation                                          |
  // | success       | installed and enabled                     | installing, waitingEnable | finalizeInstallSuccess                                         |
  //
  // clang-format on
  // Only a new run leaves needAdmin, failed and success, with three exceptions:
  // - The user allows the input method before the delayed step to waitingEnable has run.
  //   The status is then success, becomes waitingEnable, and the next poll makes it
  //   success again.
  // - A script fails after it has written "finish". finishPrivilegedRun then sets failed
  //   or needAdmin from wherever the activation had come to.
  // - It fails before the delayed step has run: that step makes it waitingEnable again.
  /// One of these statuses.
  class InstallationStatus {
   public:
    enum class Case { failed, notStarted, installing, waitingEnable, success, needAdmin };
    static constexpr Case notStarted = Case::notStarted, installing = Case::installing,
                          waitingEnable = Case::waitingEnable, success = Case::success,
                          needAdmin = Case::needAdmin;

    InstallationStatus(Case value) : case_(value) {}
    /// The only one that carries data: a message for the user.
    static InstallationStatus failed(std::string message) {
      InstallationStatus status(Case::failed);
      status.message_ = std::move(message);
      return status;
    }

    bool is(Case value) const { return case_ == value; }
    /// Whether the run has ended, well or not, after which no more is asked of the system.
    bool isOver() const { return is(success) || is(Case::failed); }
    Case value() const { return case_; }
    /// Empty unless failed.
    const std::string& message() const { return message_; }
    bool operator==(const InstallationStatus&) const = default;

   private:
    Case case_;
    std::string message_;
  };

  [[nodiscard]] static std::shared_ptr<ContentView> create();
  ~ContentView();

  // The state. A comment at a field says what true, or a value, means.
  /// Everything appended to the UI log since the view was created; only grows.
  State<std::string> logText;
  /// 0.0 to 1.0.
  State<double> installProgress{0.0};
  /// The window shows the progress. Stays true when the authorisation was refused or
  /// the script has failed.
  State<bool> isInstalling{false};
  State<InstallationStatus> installationStatus{InstallationStatus::notStarted};
  /// The hosting window has been configured.
  State<bool> windowConfigured{false};
  /// Post-install activation has been started for the current run.
  State<bool> didTriggerActivation{false};
  State<platform::Observation> enableNotificationObserver;
  /// The deferred handling of the latest enabled-sources notification.
  State<std::unique_ptr<platform::WorkItem>> pendingEnableNotificationWorkItem;
  State<bool> didRegisterForActivation{false};
  State<bool> didRegisterLaunchServicesForActivation{false};
  /// The one automatic enable attempt of a fresh install has been made.
  State<bool> didAttemptFreshEnableOnce{false};
  /// The exit confirmation overlay is shown.
  State<bool> showExitEnableConfirm{false};
  State<std::unique_ptr<platform::Timer>> enablePollingTimer;
  State<bool> didDisableAllForFreshEnable{false};
  /// When enabling the base source was last requested.
  State<std::optional<platform::WallClock::time_point>> lastEnableBaseRequestAt;
  /// When an enabled-sources notification was last handled.
  State<std::optional<platform::WallClock::time_point>> lastEnabledNotificationAt;
  State<bool> didEnsureHIToolboxDefaultsOnce{false};
  State<bool> didRefreshTextInputAgentsOnce{false};
  /// The input method was there when the run started.
  State<bool> installPathExistedBeforeStart{false};
  State<bool> shouldLaunchSettingsBootstrapOnSuccess{false};
  State<bool> didLaunchSettingsBootstrap{false};
  /// Never replaced.
  State<std::unique_ptr<WindowCloseInterceptor>> closeInterceptor;

  // Name, log and commands (installer/content_view.cpp).
  /// The product's name as the user sees it: the bundle's display name, or else its
  /// name, or else a fixed one.
  static std::string appDisplayName();
  /// Appends `text` as it is to logText and to the UI log.
  void appendUILog(const std::string& text);
  /// Runs a tool and waits for it; failures are dropped.
  static void runCommand(const std::string& launchPath, const std::vector<std::string>& arguments);

  // The privileged run (installer/privileged_run.cpp).
  /// What the buttons "安装" and, after a failure, "重试" do.
  void userPressedInstall();
  /// What "重试" does after a refused authorisation.
  void userPressedRetryAuthorisation();
  void startInstallation();
  /// Whether a script of this view runs; another installer's may have written "finish".
  bool isScriptRunning() const { return !tails_.empty(); }
  /// Calls `handler` each time that one has ended, with the status set to what follows.
  [[nodiscard]] platform::Observation observeScriptEnd(std::function<void()> handler);

  // The install log (installer/log_tail.cpp).
  /// Starts `tail` on the install log. The caller owns it, and it ends with the view at
  /// the latest. A launch that fails is logged, and nothing is followed then.
  std::shared_ptr<platform::ChildProcess> startFollowingInstallLog();
  /// One decoded piece of the install log.
  void handleInstallLogChunk(const std::string& text);

  // After the script (activation/).
  /// A run without the script, for an input method that is there already.
  void startActivation();
  /// Registers the installed bundle, and finishes or starts to wait. Runs once in each
  /// run, see triggerActivation().
  void postInstallActivation();
  /// Asks the system to enable the input method. `trigger` says in the log who
  /// called: "enter-waiting", "auto" or "user"; it changes nothing else.
  void attemptFreshEnable(const std::string& trigger);
  void registerEnabledInputSourcesChangedNotificationIfNeeded();
  void removeEnabledInputSourcesChangedNotificationIfNeeded();
  /// Selects the mode and, once it is selected, finishes. `trigger` is the name of
  /// the notification, for the log.
  void handleEnabledKeyboardInputSourcesChanged(const std::string& trigger);
  /// Polls every 1.5 s from now on; replaces a timer that runs already.
  void startEnablePolling();
  /// Does what the notification does, for systems that post it late or not at all.
  void pollEnableState();
  /// The waiting screen has come on screen, or left it.
  void enableWaitingViewDidAppear();
  void enableWaitingViewDidDisappear();
  /// `refreshAgents` makes no difference: the agents are restarted once in each run.
  void finalizeInstallSuccess(bool refreshAgents);
  void launchSettingsBootstrapIfNeeded();
  static void registerWithLaunchServicesIfPossible();
  void openKeyboardSettings();
  void userPressedGoEnable();

  // The window (app/window/window_configuration.cpp, app/window/window_hooks.cpp).
  /// Configures the hosting window, the first time that there is one. The window
  /// keeps asking closeInterceptor until it closes.
  void configureWindow(platform::HostWindow* window);
  /// What "退出安装" does.
  void userPressedExit();

 private:
  ContentView();
  void watchWindowHooks();
  void finishPrivilegedRun(const std::optional<platform::AdminScriptError>& error);
  void triggerActivation();
  void scheduleNotificationHandling();
  void registerForActivationIfNeeded(std::string_view logSuffix);
  void refreshTextInputAgentsOnce();

  /// The followers of runs whose scripts have not ended; they must not outlive the view.
  std::vector<std::weak_ptr<platform::ChildProcess>> tails_;
  platform::HandlerList<> scriptEndObservers_;
  platform::Observation waitingEnableWatch_;
  platform::Observation exitConfirmObserver_;
};
