// Whole installations by random events on the virtual clock, and the rules that hold
// whatever happens. A failure prints the seed and the rule; the seed alone tells what
// happened.
//   simulation_test [--schedules N | --seed S]

#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "installer/content_view.h"
#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace {

using Property = platform::InputSourceProperty;
using Status = InstallationStatus;
using platform::PropertyListValue;

struct Broken : std::runtime_error {
  using std::runtime_error::runtime_error;
};
void require(bool holds, const std::string& rule) {
  if (!holds) throw Broken(rule);
}

/// splitmix64: a schedule is the same on every system.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::size_t below(std::size_t bound) {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
    return std::size_t((z ^ (z >> 31U)) % bound);
  }

 private:
  std::uint64_t state_;
};

/// The product's folders, made once for all schedules.
class Folders {
 public:
  Folders() {
    std::string pattern = std::filesystem::temp_directory_path() / "orvane-simulation-XXXXXX";
    root = ::mkdtemp(pattern.data());
    const auto bundle = std::filesystem::path(kBundleOnDisk).lexically_relative("Library");
    std::filesystem::create_directories(root / "0");
    std::filesystem::create_directories(root / "1" / bundle);
    std::filesystem::create_directories(root / "2" / bundle / "Contents/MacOS/OrvaneSettings.app");
  }
  ~Folders() { std::filesystem::remove_all(root); }
  Folders(const Folders&) = delete;
  Folders& operator=(const Folders&) = delete;

  /// 0: nothing at the install location; 1: a bundle; 2: one with its settings application.
  void putBundle(std::size_t which) {
    if (which == bundle) return;
    bundle = which;
    std::filesystem::remove(root / "Library");
    std::filesystem::create_symlink(std::to_string(which), root / "Library");
  }
  std::filesystem::path root;
  std::size_t bundle = 3;
};

constexpr double kRounding = 1e-6;
// Around every delay of an installation.
constexpr std::array kDelays = {0.0,    0.0, 0.05, 0.1, 0.2499, 0.25, 0.2501, 0.3499, 0.35,
                                0.3501, 1.0, 1.5,  3.0, 4.5,    5.9,  5.9999, 6.0,    6.0001};
constexpr std::array kPhrases = {"unzip package",
                                 "kill Orvane",
                                 "move package to install path",
                                 "install Sondrel",
                                 "Cogwen installed successfully",
                                 "finish",
                                 "finish",
                                 "finish",
                                 "正在复制文件",
                                 "unzip package, finish",
                                 "宋"};

/// One window, its user, the script and the system around it.
class World {
 public:
  World(Folders& folders, std::uint64_t seed, bool isTold)
      : folders_(folders), random_(seed), isTold_(isTold), platform_(folders.root) {
    folders_.putBundle(0);
    base_ = platform_.addSource(kBase, kBase);
    mode_ = platform_.addSource(kBase, kPinyin);
    auto window = platform_.hostWindow();
    view_->configureWindow(&window);
    // As the screens do.
    screen_ = view_->installationStatus.observe([this](const Status& status, auto) {
      const bool isShown = status.is(Status::waitingEnable);
      if (isShown == isScreenShown_) return;
      isScreenShown_ = isShown;
      isShown ? view_->enableWaitingViewDidAppear() : view_->enableWaitingViewDidDisappear();
    });
    platform_.takeJournal();
    platform_.afterBlock = [this] { check(); };
  }
  ~World() {
    platform_.afterBlock = nullptr;
    screen_.reset();
    view_.reset();
  }
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  void run() {
    for (std::size_t i = random_.below(4); i > 0; --i) changeSources(random_.below(12));
    folders_.putBundle(random_.below(3));
    press("安装", &ContentView::userPressedInstall);
    for (std::size_t i = 4 + random_.below(24); i > 0 && view_; --i) apply(random_.below(100));
    if (view_) settle();
  }

 private:
  // What may happen.

  void apply(std::size_t event) {
    const Status& status = view_->installationStatus;
    const bool isIdle = !view_->isInstalling;
    tell("event " + std::to_string(event) + " in status " + std::to_string(status.value()));
    if (event < 28) {
      platform_.advance(kDelays.at(random_.below(kDelays.size())));
    } else if (event < 36) {
      for (std::size_t i = random_.below(6); i > 0 && !platform_.queue.empty(); --i)
        platform_.runNextBlock();
    } else if (event < 43) {
      if (isIdle && (status.is(Status::notStarted) || status.is(Status::failed)))
        press("安装", &ContentView::userPressedInstall);
    } else if (event < 46) {
      // A script that fails after "finish" leaves this button.
      if (isIdle && status.is(Status::needAdmin))
        press("重试", &ContentView::userPressedRetryAuthorisation);
    } else if (event < 52) {
      if (status.is(Status::waitingEnable)) pressGoEnable();
    } else if (event < 55) {
      pressClose();
    } else if (event < 56) {
      if (!view_->showExitEnableConfirm) return;
      view_->userPressedExit();
      require(platform_.journal.back() == "terminate application", "exit quits");
      return closeWindow();
    } else if (event < 70) {
      if (!platform_.workerBlocks.empty()) write();
    } else if (event < 77) {
      if (!platform_.workerBlocks.empty()) endScript(random_.below(8));
    } else if (event < 86) {
      for (std::size_t i = random_.below(3) + 1; i > 0; --i)
        platform_.notifyEnabledSourcesChanged();
    } else if (event < 96) {
      changeSources(random_.below(12));
    } else if (event < 98) {
      const std::array calls = {"enable", "disable", "select", "deselect"};
      platform_.statuses[calls.at(random_.below(4))].assign(1 + random_.below(2), -50);
    } else {
      platform_.hasInstallScript = random_.below(3) > 0;
      platform_.launchProblem.reset();
      if (random_.below(3) == 0) platform_.launchProblem = "no such tool";
    }
    check();
  }

  void press(const std::string& button, void (ContentView::*operation)()) {
    tell("press " + button);
    checkUILog();
    run_ = {};
    run_.wasBundleThere = folders_.bundle != 0;
    // What is left of an earlier run may move the status as well.
    run_.isOvertaken = !platform_.workerBlocks.empty() || !platform_.queue.empty() ||
                       !waitingDue_.empty() || platform_.liveObservers > 0;
    run_.isStart = true;
    run_.mayEndUnmoved = button == "重试" && view_->didTriggerActivation;
    uiLog_.clear();
    unread_.clear();
    (*view_.*operation)();
    check();
  }

  void pressGoEnable() {
    view_->userPressedGoEnable();
    require(!view_->showExitEnableConfirm, "go-enable hides the confirmation");
    settingsDue_.push_back(platform_.elapsed + 0.35);
  }

  void pressClose() {
    const bool mayClose = platform_.window.shouldClose();
    require(!platform_.queue.empty() || mayClose != is(Status::waitingEnable),
            "the window closes unless the view waits");
    require(mayClose || view_->showExitEnableConfirm, "a refused close asks");
    if (mayClose && random_.below(2) == 0) closeWindow();
  }

  /// The reader may cut a piece anywhere, also within a character.
  void write() {
    unread_ += kPhrases.at(random_.below(kPhrases.size())) + std::string(" #") +
               std::to_string(++written_) + "；";
    const std::size_t left = random_.below(3) == 0 ? random_.below(8) : 0;
    const std::string piece = unread_.substr(0, unread_.size() - left);
    unread_.erase(0, piece.size());
    if (!platform_.outputHandler) return;
    if (!piece.empty() && utf8::is_valid(piece)) pieces_.push_back(piece);
    platform_.outputHandler(piece);
  }

  void endScript(std::size_t how) {
    static const std::array kErrors = {
        platform::AdminScriptError{-128, std::nullopt},
        platform::AdminScriptError{1, "sorry, not authorized"},
        platform::AdminScriptError{1, "disk full"},
    };
    platform_.adminScriptError.reset();
    if (how < kErrors.size()) platform_.adminScriptError = kErrors.at(how);
    if (how > kErrors.size()) folders_.putBundle(1 + how % 2);
    if (how < kErrors.size()) {
      ++failuresDue_;
      // It may fail after it has said "finish".
      if (run_.activations > 0 || !pieces_.empty()) run_.isOvertaken = true;
    }
    const platform::Block script = std::move(platform_.workerBlocks.front());
    platform_.workerBlocks.erase(platform_.workerBlocks.begin());
    script();
  }

  void changeSources(std::size_t which) {
    auto& sources = platform_.sources;
    const auto enable = [&](bool isEnabled) {
      for (const auto& source : {base_, mode_}) source->properties[Property::isEnabled] = isEnabled;
    };
    const auto flip = [](const auto& source, Property key) {
      auto& flag = source->properties[key];
      flag = flag == PropertyListValue(false);
    };
    const auto toggle = [&](const auto& source) {
      if (std::erase(sources, source) == 0) sources.push_back(source);
    };
    switch (which) {
      case 0:
      case 1:
        return enable(true);
      case 2:
        return enable(false);
      case 3:
        return flip(base_, Property::isEnabled);
      case 4:
        return flip(mode_, Property::isSelectCapable);
      case 5:
        platform_.current = mode_;
        return;
      case 6:
        platform_.current = nullptr;
        return;
      case 7:
      case 8:
        platform_.appliesSelect = !platform_.appliesSelect;
        return;
      case 9:
        platform_.answersNoList = !platform_.answersNoList;
        return;
      case 10:
        return toggle(base_);
      default:
        return toggle(mode_);
    }
  }

  /// The user allows everything, every script ends, and the window closes.
  void settle() {
    platform_.statuses.clear();
    platform_.answersNoList = false;
    platform_.appliesSelect = true;
    platform_.sources = {mode_, base_};
    mode_->properties[Property::isSelectCapable] = true;
    changeSources(0);
    while (!platform_.workerBlocks.empty()) endScript(7);
    // The delayed block, then at most 3 seconds of standing back and one poll.
    platform_.advance(5.0);
    require(pieces_.empty(), "every piece is logged");
    require(!is(Status::waitingEnable), "what the user allows ends the waiting");
    require(!is(Status::installing) || run_.mayEndUnmoved, "a script that ends moves the run on");
    require(settingsDue_.empty(), "the settings open after go-enable");
    closeWindow();
  }

  void closeWindow() {
    platform_.drain();
    checkUILog();
    screen_.reset();
    const std::weak_ptr<ContentView> gone = view_;
    view_.reset();
    require(gone.expired(), "nothing keeps the view");
    require(platform_.runningChildren == 0, "the followers end with the view");
    require(platform_.liveTimers() == 0 && platform_.liveObservers == 0,
            "nothing watches any more");
    platform_.takeJournal();
    if (platform_.outputHandler) platform_.outputHandler("finish");
    platform_.notifyEnabledSourcesChanged();
    platform_.runWorker();
    platform_.advance(20.0);
    for (const std::string& line : platform_.takeJournal())
      require(line.starts_with("execute") || line == "terminate",
              "without a view nothing happens: " + line);
    checkUILog();
    require(platform_.queue.empty() && platform_.unowned.empty(), "no block is left");
    require(!platform_.outputHandler, "no follower is left");
  }

  // The rules. They compare each state with the one before, after every block.

  struct Run {
    bool wasBundleThere = false;
    bool isStart = false, isPieceLogged = false, isOvertaken = false, mayEndUnmoved = false;
    int activations = 0, restarts = 0, opened = 0, disableAlls = 0;
    std::optional<double> enabledAt;
  };

  bool is(Status::Case value) const { return view_->installationStatus->is(value); }
  static bool isOver(const Status& status) {
    return status.is(Status::success) || status.is(Status::failed);
  }
  bool isNow(double due) const { return std::abs(platform_.elapsed - due) < kRounding; }

  void check() {
    if (!view_) return;
    const std::string added = checkLog();
    run_.disableAlls += added.find("fresh:disableAll") != added.npos;
    require(run_.disableAlls <= 1, "sources are disabled at most once a run");
    for (const std::string& line : platform_.takeJournal()) checkCall(line);
    checkStatus(added);
    checkFields(added);
    run_.isStart = run_.isPieceLogged = false;
  }

  void checkUILog() const {
    require(platform_.readFile("/tmp/tessal_installer_ui.log") == uiLog_,
            "the UI log is the log of the run");
  }

  /// What has been added. A piece never ends in a line end here, the view's own lines do.
  std::string checkLog() {
    const std::string& log = view_->logText.get();
    require(log.size() >= logSize_, "the log only grows");
    std::string own = log.substr(logSize_);
    logSize_ = log.size();
    uiLog_ += own;
    if (!own.empty() && own.back() != '\n') {
      require(!pieces_.empty() && own.ends_with(pieces_.front()),
              "every piece is logged once and in order");
      own.resize(own.size() - pieces_.front().size());
      run_.isPieceLogged = true;
      pieces_.pop_front();
    }
    return own;
  }

  void checkCall(const std::string& line) {
    tell("  " + line);
    const Status& status = view_->installationStatus;
    if (line.starts_with("register Library")) {
      require(++registrations_ == 1, "the bundle is registered at most once a window");
    } else if (line.starts_with("register with")) {
      require(++launchServices_ == 1, "Launch Services are told at most once a window");
    } else if (line.starts_with("run ")) {
      require(line == (run_.restarts == 0 ? "run /usr/bin/killall -9 TextInputMenuAgent"
                                          : "run /usr/bin/killall -9 TextInputSwitcher"),
              "agents are restarted in order");
      require(++run_.restarts <= 2, "agents are restarted at most once a run");
    } else if (line.starts_with("open application")) {
      require(++run_.opened == 1, "the settings application opens at most once a run");
      require(!run_.wasBundleThere, "it opens only after a first install");
    } else if (line.starts_with("disable ")) {
      require(line != "disable " + kPinyin || lastCall_ != "disable " + kBase,
              "the mode is disabled before the base source");
      require(!run_.enabledAt, "disabling comes before the first request");
    } else if (line == "enable " + kBase) {
      require(registrations_ == 1, "registration comes before the request");
      require(!isBaseEnabled(), "nothing is requested while the base source is enabled");
      require(run_.disableAlls == 1, "disabling comes before the request");
      require(!run_.enabledAt || platform_.elapsed - *run_.enabledAt >= 6.0 - kRounding,
              "requests are 6 seconds apart");
      require(!isOver(status), "nothing is requested once a run is over");
      run_.enabledAt = platform_.elapsed;
    } else if (line == "activate") {
      require(!isOver(status), "nothing comes to the front once a run is over");
    } else if (line.starts_with("select ")) {
      require(lastCall_ == "de" + line, "a selection is deselected first");
      require(!isOver(status_), "nothing is selected once a run is over");
      // The handler stamps the time before it calls anything, so this is a poll.
      if (view_->lastEnabledNotificationAt.get() == handledAt_)
        require(status_.is(Status::waitingEnable) &&
                    (!handledAt_ ||
                     platform::now() - *handledAt_ >= platform::Seconds(3.0 - kRounding)),
                "a poll stands back for 3 seconds after a notification");
    }
    lastCall_ = line;
  }

  void checkStatus(const std::string& added) {
    run_.activations += added.find("开始注册并激活输入法...\n") != added.npos;
    require(run_.activations <= 1 || run_.isOvertaken, "activation starts at most once a run");
    if (added.find("启用路径：全新") != added.npos) waitingDue_.push_back(platform_.elapsed + 0.25);
    while (!waitingDue_.empty() && platform_.elapsed > waitingDue_.front() + kRounding)
      waitingDue_.pop_front();
    if (added.starts_with("收到输入源启用状态更新")) handlerDue_ = platform_.elapsed + 0.35;
    if (const auto& handledAt = view_->lastEnabledNotificationAt.get(); handledAt != handledAt_) {
      require(isNow(handlerDue_), "the handler runs 0.35 s after the last notification");
      handledAt_ = handledAt;
    }

    const Status& status = view_->installationStatus;
    if (status == status_ && !run_.isStart) return;
    const Status from = run_.isStart ? Status(Status::installing) : status_;
    const std::string change = "status " + std::to_string(from.value()) + " to " +
                               std::to_string(status.value()) + " " + status.message();
    require(run_.isOvertaken || from.is(Status::installing) ||
                (from.is(Status::waitingEnable) && status.is(Status::success)) ||
                (from.is(Status::success) && status.is(Status::waitingEnable)),
            change);
    if (status.message() == "安装失败" || status.is(Status::needAdmin)) {
      require(failuresDue_-- > 0, change + " without a failure");
    } else if (status.is(Status::failed)) {
      require(!view_->isInstalling, change + " ends the run");
      require(status.message() == "找不到安装脚本 install.sh"
                  ? !platform_.hasInstallScript
                  : folders_.bundle == 0 && status.message() == "未检测到已安装的输入法",
              change + " without a reason");
    } else if (status.is(Status::waitingEnable)) {
      require(!waitingDue_.empty() && isNow(waitingDue_.front()),
              change + " comes 0.25 s after the fresh path");
      require(!view_->isInstalling, change + " ends the progress");
    } else if (status.is(Status::success)) {
      require(!view_->isInstalling && view_->installProgress == 1.0, change + " ends the run");
      require(added.find("覆盖安装") != added.npos || platform_.current == mode_,
              change + " needs the mode selected");
      require(run_.restarts == 2, change + " restarts the agents");
      require(platform_.liveObservers == 0, change + " stops observing");
    } else {
      require(run_.isStart && view_->isInstalling, change + " without a start");
    }
    status_ = status;
  }

  void checkFields(const std::string& added) {
    if (added.find("opening System Settings") != added.npos) {
      require(!settingsDue_.empty() && isNow(settingsDue_.front()),
              "the settings open 0.35 s after go-enable");
      settingsDue_.pop_front();
    }
    const double progress = view_->installProgress;
    require(progress >= 0.0 && progress <= 1.0, "progress is a fraction");
    require(progress >= progress_ || run_.isStart || run_.isPieceLogged,
            "only a new run or a step of the script lowers the progress");
    progress_ = progress;
    require(!run_.isStart || (platform_.liveTimers() == 0 && !view_->showExitEnableConfirm),
            "a new run stops the poll and asks nothing");
    require(platform_.liveTimers() <= 1, "there is one poll at most");
    require(platform_.liveObservers <= 1, "there is one observer at most");
    require(!platform_.queue.empty() ||
                view_->closeInterceptor->get()->shouldBlockClose() == is(Status::waitingEnable),
            "closing is refused exactly while waiting");
  }

  bool isBaseEnabled() const {
    return !platform_.answersNoList &&
           std::ranges::any_of(platform_.sources, [](const auto& source) {
             return source->properties[Property::inputSourceID] == PropertyListValue(kBase) &&
                    source->properties[Property::isEnabled] == PropertyListValue(true);
           });
  }

  void tell(const std::string& line) const {
    if (isTold_) std::printf("%9.4f %s\n", platform_.elapsed, line.c_str());
  }

  Folders& folders_;
  Random random_;
  bool isTold_;
  test::Platform platform_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  platform::Observation screen_;
  bool isScreenShown_ = false;
  std::shared_ptr<platform::InputSourceObject> base_, mode_;
  std::string unread_;  // written by the script, not yet read
  int written_ = 0, failuresDue_ = 0;

  Run run_;
  Status status_{Status::notStarted};
  double progress_ = 0.0;
  std::size_t logSize_ = 0;
  std::string uiLog_, lastCall_;
  std::deque<std::string> pieces_;  // read, not yet logged
  std::deque<double> waitingDue_, settingsDue_;
  double handlerDue_ = 0.0;
  std::optional<platform::WallClock::time_point> handledAt_;
  int registrations_ = 0, launchServices_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  std::uint64_t first = 1;
  std::uint64_t count = 10'000;
  const bool isOne = argc == 3 && argv[1] == std::string("--seed");
  if (argc == 3) (isOne ? first : count) = std::strtoull(argv[2], nullptr, 10);
  if (isOne) count = 1;

  Folders folders;
  for (std::uint64_t seed = first; seed - first < count; ++seed) {
    try {
      World(folders, seed, isOne).run();
    } catch (const Broken& broken) {
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), broken.what());
      return 1;
    }
  }
  std::printf("%llu schedules: every rule holds\n", static_cast<unsigned long long>(count));
  return 0;
}
