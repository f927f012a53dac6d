#include "tests/simulation/invariants.h"

#include <cmath>
#include <string_view>

#include "tests/identifiers.h"

namespace simulation {

namespace {

using Status = InstallationStatus;
constexpr double kRounding = 1e-6;
bool isAt(double time, double due) {
  return std::abs(time - due) < kRounding;
}
bool isOver(const Status& status) {
  return status.is(Status::success) || status.is(Status::failed);
}

bool isMode(const platform::InputSource& source) {
  using Property = platform::InputSourceProperty;
  return platform::getInputSourceProperty(source, Property::inputModeID) ==
             platform::PropertyListValue(kPinyin) ||
         platform::getInputSourceProperty(source, Property::inputSourceID) ==
             platform::PropertyListValue(kPinyin);
}

int count(std::string_view text, std::string_view part) {
  int found = 0;
  for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++found;
  return found;
}

}  // namespace

Invariants::Invariants(const test::Platform& platform, const ContentView& view)
    : platform_(platform), view_(view) {}

void Invariants::runStarts(bool isBundleThere, bool isScriptPending, bool keepsActivation) {
  run_ = {};
  run_.wasBundleThere = isBundleThere;
  run_.isOvertaken =
      isScriptPending || !waitingDue_.empty() || !pieces_.empty() || platform_.liveObservers > 0;
  run_.keepsActivation = keepsActivation;
  isStart_ = true;
  uiLog_.clear();
}
void Invariants::pieceRead(const std::string& text) {
  pieces_.push_back(text);
  if (text.find("finish") == std::string::npos) return;
  run_.hasSaidFinish = true;
  if (run_.hasFailed) run_.isOvertaken = true;
}
void Invariants::scriptEnded(bool hasFailed) {
  if (!hasFailed) return;
  ++failuresDue_;
  run_.hasFailed = true;
  if (run_.hasSaidFinish) run_.isOvertaken = true;
}
void Invariants::enabledWasAsked(bool answer) {
  wasAsked_ = true;
  answered_ = answer;
}
void Invariants::closeWasAsked(bool mayClose) {
  require(!platform_.queue.empty() || mayClose != is(Status::waitingEnable),
          "the window closes unless the view waits");
  isCloseRefused_ = !mayClose;
}
void Invariants::goEnablePressed() {
  require(!view_.showExitEnableConfirm, "go-enable hides the confirmation");
  settingsDue_.push_back(platform_.elapsed + 0.35);
}

void Invariants::check() {
  checkLog();
  // The handler stamps the time before it calls anything.
  isPoll_ = view_.lastEnabledNotificationAt.get() == handledAt_;
  checkNotifications();
  checkJournal();
  checkStatus();
  checkFields();
  isStart_ = isPoll_ = wasAsked_ = hasActivated_ = isOverwrite_ = isCloseRefused_ = false;
  piece_.clear();
}

void Invariants::checkUILog() const {
  require(platform_.readFile("/tmp/tessal_installer_ui.log") == uiLog_,
          "the UI log is the log of the run");
}

/// A piece never ends in a line end here, what the view writes itself always does.
void Invariants::checkLog() {
  const std::string& log = view_.logText.get();
  require(log.size() >= logSize_, "the log only grows");
  if (platform_.queue.empty() && log.size() == logSize_)
    require(pieces_.empty(), "every piece is logged");
  if (log.size() > logSize_) {
    const std::string added = log.substr(logSize_);
    std::string_view own = added;
    uiLog_ += own;
    if (own.back() != '\n') {
      require(!pieces_.empty() && own.ends_with(pieces_.front()),
              "every piece is logged once and in order");
      piece_ = pieces_.front();
      pieces_.pop_front();
      own.remove_suffix(piece_.size());
      require(own.empty() || own.starts_with("开始注册并激活输入法...\n"),
              "before a piece stands only what it started");
    }
    hasActivated_ = own.find("开始注册并激活输入法...\n") != own.npos;
    run_.activations += hasActivated_;
    require(run_.activations <= 1, "activation starts at most once a run");
    if (own.find("启用路径：") != own.npos) ++run_.paths;
    if (own.find("启用路径：全新") != own.npos) waitingDue_.push_back(platform_.elapsed + 0.25);
    isOverwrite_ = own.find("启用路径：覆盖") != own.npos;
    run_.disableAlls += count(own, "fresh:disableAll");
    require(run_.disableAlls <= 1, "the sources are disabled at most once a run");
    run_.settings += count(own, "bootstrap");
    settingsOpened_ += count(own, "opening System Settings");
    if (own.starts_with("收到输入源启用状态更新")) {
      ++notifications_;
      handlerDue_ = platform_.elapsed + 0.35;
      isHandlerExcused_ = false;
    }
    logSize_ = log.size();
  }
}

void Invariants::checkJournal() {
  for (; journalSize_ < platform_.journal.size(); ++journalSize_)
    checkCall(platform_.journal[journalSize_]);
}

void Invariants::checkCall(const std::string& line) {
  if (line.starts_with("register Library")) {
    require(++registrations_ == 1, "the bundle is registered at most once a window");
  } else if (line.starts_with("register with")) {
    require(++launchServices_ == 1, "Launch Services are told at most once a window");
  } else if (line == "run /usr/bin/killall -9 TextInputMenuAgent") {
    require(++run_.menuRestarts == 1, "agents are restarted at most once a run");
  } else if (line == "run /usr/bin/killall -9 TextInputSwitcher") {
    require(++run_.switcherRestarts == 1 && run_.menuRestarts == 1, "agents restart in order");
  } else if (line.starts_with("open application")) {
    require(++run_.opened == 1, "the settings application opens at most once a run");
    require(!run_.wasBundleThere, "it opens only after a first install");
  } else if (line == "disable " + kPinyin) {
    require(++run_.modeDisables == 1 && run_.baseDisables == 0, "the mode is disabled once, first");
    require(!run_.enabledAt, "disabling comes before the first request");
  } else if (line == "disable " + kBase) {
    require(++run_.baseDisables == 1, "the base source is disabled once a run");
    require(!run_.enabledAt, "disabling comes before the first request");
  } else if (line == "enable " + kBase) {
    require(registrations_ == 1, "registration comes before the request");
    require(wasAsked_ && !answered_, "nothing is requested while the base source is enabled");
    require(run_.disableAlls == 1, "disabling comes before the request");
    require(!run_.enabledAt || platform_.elapsed - *run_.enabledAt >= 6.0 - kRounding,
            "requests are 6 seconds apart");
    require(!isOver(view_.installationStatus), "nothing is requested once a run is over");
    run_.enabledAt = platform_.elapsed;
  } else if (line == "activate") {
    require(!isOver(view_.installationStatus), "nothing comes to the front once a run is over");
  } else if (line.starts_with("select ")) {
    require(lastCall_ == "de" + line, "a selection is deselected first");
    require(!isOver(status_), "nothing is selected once a run is over");
    if (isPoll_)
      require(
          status_.is(Status::waitingEnable) &&
              (!handledAt_ || platform::now() - *handledAt_ >= platform::Seconds(3.0 - kRounding)),
          "a poll stands back for 3 seconds after a notification");
  } else if (line == "stop observing") {
    handlerDue_.reset();
  }
  lastCall_ = line;
}

void Invariants::checkNotifications() {
  require(notifications_ == platform_.deliveredNotifications, "every notification is logged");
  const auto& handledAt = view_.lastEnabledNotificationAt.get();
  if (handledAt != handledAt_) {
    require(handlerDue_ && isAt(platform_.elapsed, *handlerDue_),
            "the handler runs 0.35 s after the last notification, once");
    handlerDue_.reset();
  } else if (handlerDue_ && isAt(platform_.elapsed, *handlerDue_)) {
    isHandlerExcused_ = isHandlerExcused_ || isOver(status_) || isOver(view_.installationStatus);
  } else if (handlerDue_ && platform_.elapsed > *handlerDue_) {
    require(isHandlerExcused_, "a burst of notifications is handled");
    handlerDue_.reset();
  }
  handledAt_ = handledAt;
}

void Invariants::checkStatus() {
  while (!waitingDue_.empty() && platform_.elapsed > waitingDue_.front() + kRounding)
    waitingDue_.pop_front();
  const Status& status = view_.installationStatus;
  const bool isStillInstalling = view_.isInstalling;
  if (status == status_ && !isStart_) return;
  const Status from = isStart_ ? Status(Status::installing) : status_;
  const std::string change = "status " + std::to_string(from.value()) + " to " +
                             std::to_string(status.value()) + " " + status.message();
  const bool isInTable = from.is(Status::installing) ||
                         (from.is(Status::waitingEnable) && status.is(Status::success)) ||
                         (run_.isOvertaken && !status.is(Status::installing));
  switch (status.value()) {
    case Status::notStarted:
      throw Broken(change);
    case Status::installing:
      require(isStart_ && isStillInstalling, change + " without a start");
      break;
    case Status::needAdmin:
      require(isInTable && failuresDue_-- > 0, change + " without a refusal");
      require(isStillInstalling == isInstalling_, change + " leaves isInstalling");
      break;
    case Status::failed:
      require(isInTable || (isStart_ && !platform_.hasInstallScript), change);
      if (status.message() == "安装失败") {
        require(failuresDue_-- > 0, change + " without a failure");
        require(isStillInstalling == isInstalling_, change + " leaves isInstalling");
      } else {
        require(!isStillInstalling, change + " ends the run");
        require(status.message() == "找不到安装脚本 install.sh"
                    ? !platform_.hasInstallScript
                    : hasActivated_ && status.message() == "未检测到已安装的输入法",
                change + " without a reason");
      }
      break;
    case Status::waitingEnable:
      require(isInTable || from.is(Status::success), change);
      require(!waitingDue_.empty() && isAt(platform_.elapsed, waitingDue_.front()),
              change + " comes 0.25 s after the fresh path");
      require(!isStillInstalling, change + " ends the progress");
      break;
    case Status::success: {
      require(isInTable, change);
      require(!isStillInstalling && view_.installProgress == 1.0, change + " ends the run");
      require(isOverwrite_ || (platform_.current && isMode(platform_.current)),
              change + " needs the mode selected");
      require(run_.menuRestarts == 1 && run_.switcherRestarts == 1, change + " restarts agents");
      require(run_.settings == (run_.paths > 0 && !run_.wasBundleThere ? 1 : 0),
              change + " opens the settings after a first install");
      require(platform_.liveObservers == 0, change + " stops observing");
      if (from.is(Status::installing) && !isOverwrite_) run_.isOvertaken = true;
      break;
    }
  }
  status_ = status;
}

void Invariants::checkFields() {
  while (!settingsDue_.empty() && isAt(platform_.elapsed, settingsDue_.front()) &&
         settingsOpened_ > 0) {
    --settingsOpened_;
    settingsDue_.pop_front();
  }
  require(settingsOpened_ == 0, "the settings open 0.35 s after go-enable");
  require(settingsDue_.empty() || platform_.elapsed < settingsDue_.front() + kRounding,
          "the settings open after go-enable");

  const double progress = view_.installProgress;
  require(progress >= 0.0 && progress <= 1.0, "progress is a fraction");
  require(progress >= progress_ || isStart_ ||
              (!piece_.empty() && (piece_.find("finish") == std::string::npos ||
                                   piece_.find("unzip package") != std::string::npos)),
          "only a new run or a step of the script lowers the progress");
  require(!hasActivated_ || progress >= 0.94, "activation comes at 94 %");
  if (isStart_) require(progress == 0.0, "a run starts at 0 %");

  require(platform_.liveTimers() <= 1, "there is one poll at most");
  require(!isStart_ || platform_.liveTimers() == 0, "a new run stops the poll");
  require(platform_.liveObservers <= 1, "there is one observer at most");
  require(!view_.showExitEnableConfirm || isConfirmShown_ || isCloseRefused_,
          "only a refused close asks");
  require(view_.showExitEnableConfirm || !isCloseRefused_, "a refused close asks");
  require(!isStart_ || !view_.showExitEnableConfirm, "a new run asks nothing");
  if (platform_.queue.empty())
    require(view_.closeInterceptor->get()->shouldBlockClose() == is(Status::waitingEnable),
            "closing is refused exactly while waiting");
  progress_ = progress;
  isInstalling_ = view_.isInstalling;
  isConfirmShown_ = view_.showExitEnableConfirm;
}

void Invariants::checkSettled() const {
  require(!is(Status::waitingEnable), "what the user allows ends the waiting");
  require(!is(Status::installing) || run_.keepsActivation, "a script that ends moves the run on");
  require(settingsDue_.empty(), "the settings open after go-enable");
}

}  // namespace simulation
