// Whole installations by random events on the virtual clock, and the rules that hold
// whatever happens. A failure prints the seed and the rule; the seed alone tells what
// happened.
//   simulation_test [--schedules N | --seed S]

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <stdexcept>

#include "inputsource/tessal_installer.h"
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

constexpr double kRounding = 1e-6;
// Around every delay of an installation.
constexpr std::array kDelays = {0.0, 0.1, 0.2499, 0.25, 0.2501, 0.3499, 0.35,   0.3501, 1.0,
                                1.5, 3.0, 4.5,    5.9,  5.9999, 6.0,    6.0001, 0.0,    0.05};
constexpr std::array kPieces = {"unzip package\n",
                                "kill Orvane\n",
                                "move package to install path\n",
                                "install Sondrel\n",
                                "Cogwen installed successfully\n",
                                "finish\n",
                                "finish\n",
                                "正在复制文件\n"};

/// One window, its user, the script and the system around it.
class World {
 public:
  World(std::uint64_t seed, bool isTold) : random_(seed), isTold_(isTold) {
    base_ = platform_.addSource(kBase, kBase);
    mode_ = platform_.addSource(kBase, kPinyin);
    // As the screens do.
    screen_ = view_->installationStatus.observe([this](const Status& status, auto) {
      const bool isShown = status.is(Status::waitingEnable);
      if (isShown == isScreenShown_) return;
      isScreenShown_ = isShown;
      isShown ? view_->enableWaitingViewDidAppear() : view_->enableWaitingViewDidDisappear();
    });
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
    for (std::size_t i = below(4); i > 0; --i) changeSources(below(10));
    if (below(3) > 0) installBundle();
    press("安装", &ContentView::userPressedInstall);
    for (std::size_t i = 4 + below(24); i > 0; --i) {
      apply(below(100));
      check();
    }
    settle();
    closeWindow();
  }

 private:
  std::size_t below(std::size_t bound) { return std::size_t(random_() % bound); }

  // What may happen.

  void apply(std::size_t event) {
    const Status& status = view_->installationStatus;
    const bool isIdle = !view_->isInstalling;
    tell("event " + std::to_string(event) + " in status " + std::to_string(status.value()));
    if (event < 28) {
      platform_.advance(kDelays.at(below(kDelays.size())));
    } else if (event < 36) {
      for (std::size_t i = below(6); i > 0 && !platform_.queue.empty(); --i)
        platform_.runNextBlock();
    } else if (event < 46) {
      if (isIdle && (status.is(Status::notStarted) || status.is(Status::failed)))
        press("安装", &ContentView::userPressedInstall);
      // A script that fails after "finish" leaves this button.
      else if (isIdle && status.is(Status::needAdmin))
        press("重试", &ContentView::userPressedRetryAuthorisation);
    } else if (event < 52) {
      if (status.is(Status::waitingEnable)) view_->userPressedGoEnable();
    } else if (event < 69) {
      if (platform_.outputHandler) platform_.outputHandler(kPieces.at(below(kPieces.size())));
    } else if (event < 76) {
      if (!platform_.workerBlocks.empty()) endScript(below(8));
    } else if (event < 86) {
      for (std::size_t i = below(3) + 1; i > 0; --i) platform_.notifyEnabledSourcesChanged();
    } else if (event < 97) {
      changeSources(below(10));
    } else {
      const std::array calls = {"enable", "disable", "select", "deselect"};
      platform_.statuses[calls.at(below(4))].assign(1 + below(2), -50);
    }
  }

  void press(const std::string& button, void (ContentView::*operation)()) {
    tell("press " + button);
    checkUILog();
    run_ = {};
    run_.wasBundleThere = TessalInstaller().isInstalled();
    run_.isStart = true;
    run_.mayEndUnmoved = button == "重试" && view_->didTriggerActivation;
    uiLog_.clear();
    (*view_.*operation)();
    check();
  }

  void endScript(std::size_t how) {
    static const std::array kErrors = {
        platform::AdminScriptError{-128, std::nullopt},
        platform::AdminScriptError{1, "disk full"},
    };
    platform_.adminScriptError.reset();
    if (how < kErrors.size()) platform_.adminScriptError = kErrors.at(how);
    if (how > kErrors.size()) installBundle();
    const platform::Block script = std::move(platform_.workerBlocks.front());
    platform_.workerBlocks.erase(platform_.workerBlocks.begin());
    script();
  }

  void installBundle() {
    platform_.putInstalledBundle();
    if (below(2) == 0) platform_.putFile(kBundle + "/Contents/MacOS/OrvaneSettings.app/x", "");
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
        return enable(true);
      case 1:
        return enable(false);
      case 2:
        return flip(base_, Property::isEnabled);
      case 3:
        return flip(mode_, Property::isSelectCapable);
      case 4:
        platform_.current = platform_.current ? nullptr : mode_;
        return;
      case 5:
        platform_.answersNoList = !platform_.answersNoList;
        return;
      case 6:
        return toggle(base_);
      case 7:
        return toggle(mode_);
      default:
        platform_.appliesSelect = !platform_.appliesSelect;
    }
  }

  /// The user allows everything, and every script ends.
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
    require(!is(Status::waitingEnable), "what the user allows ends the waiting");
    require(!is(Status::installing) || run_.mayEndUnmoved, "a script that ends moves the run on");
  }

  void closeWindow() {
    checkUILog();
    screen_.reset();
    const std::weak_ptr<ContentView> gone = view_;
    view_.reset();
    require(gone.expired(), "nothing keeps the view");
    require(platform_.runningChildren == 0, "the followers end with the view");
    require(platform_.liveTimers() == 0 && platform_.liveObservers == 0,
            "nothing watches any more");
    platform_.takeJournal();
    platform_.notifyEnabledSourcesChanged();
    platform_.advance(20.0);
    require(platform_.takeJournal().empty(), "without a view nothing happens");
    require(platform_.queue.empty() && platform_.unowned.empty(), "no block is left");
    require(!platform_.outputHandler, "no follower is left");
  }

  // The rules, after every block and event.

  struct Run {
    bool wasBundleThere = false, isStart = false, mayEndUnmoved = false;
    int restarts = 0, opened = 0, disableAlls = 0;
    std::optional<double> enabledAt;
  };

  bool is(Status::Case value) const { return view_->installationStatus->is(value); }
  static bool isOver(const Status& status) {
    return status.is(Status::success) || status.is(Status::failed);
  }

  void checkUILog() const {
    require(platform_.readFile("/tmp/tessal_installer_ui.log") == uiLog_,
            "the UI log is the log of the run");
  }

  void check() {
    if (!view_) return;
    const std::string& log = view_->logText.get();
    require(log.size() >= logSize_, "the log only grows");
    const std::string added = log.substr(logSize_);
    logSize_ = log.size();
    uiLog_ += added;
    run_.disableAlls += added.find("fresh:disableAll") != added.npos;
    require(run_.disableAlls <= 1, "sources are disabled at most once a run");
    for (const std::string& line : platform_.takeJournal()) checkCall(line);
    handledAt_ = view_->lastEnabledNotificationAt;

    const Status& status = view_->installationStatus;
    if (status.is(Status::success) && !status_.is(Status::success)) {
      require(!view_->isInstalling && view_->installProgress == 1.0, "success ends the run");
      require(added.find("覆盖安装") != added.npos || platform_.current == mode_,
              "success needs the mode selected");
      require(run_.restarts == 2, "success restarts the agents");
      require(platform_.liveObservers == 0, "success stops observing");
    }
    status_ = status;
    if (run_.isStart)
      require(platform_.liveTimers() == 0 && !view_->showExitEnableConfirm,
              "a new run stops the poll and asks nothing");
    run_.isStart = false;
    require(platform_.liveTimers() <= 1, "there is one poll at most");
    require(platform_.liveObservers <= 1, "there is one observer at most");
    require(!platform_.queue.empty() ||
                view_->closeInterceptor->get()->shouldBlockClose() == is(Status::waitingEnable),
            "closing is refused exactly while waiting");
  }

  void checkCall(const std::string& line) {
    tell("  " + line);
    const Status& status = view_->installationStatus;
    if (line.starts_with("register Library")) {
      require(++registrations_ == 1, "the bundle is registered at most once a window");
    } else if (line.starts_with("register with")) {
      require(++launchServices_ == 1, "Launch Services are told at most once a window");
    } else if (line.starts_with("run ")) {
      require(++run_.restarts <= 2, "agents are restarted at most once a run");
    } else if (line.starts_with("open application")) {
      require(++run_.opened == 1, "the settings application opens at most once a run");
      require(!run_.wasBundleThere, "it opens only after a first install");
    } else if (line.starts_with("disable ")) {
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
      if (view_->lastEnabledNotificationAt.get() == handledAt_ && handledAt_)
        require(platform::now() - *handledAt_ >= platform::Seconds(3.0 - kRounding),
                "a poll stands back for 3 seconds after a notification");
    }
    lastCall_ = line;
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

  std::mt19937_64 random_;
  bool isTold_;
  test::Platform platform_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  platform::Observation screen_;
  bool isScreenShown_ = false;
  std::shared_ptr<platform::InputSourceObject> base_, mode_;

  // As of the last check.
  Run run_;
  Status status_{Status::notStarted};
  std::size_t logSize_ = 0;
  std::string uiLog_, lastCall_;
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

  for (std::uint64_t seed = first; seed - first < count; ++seed) {
    try {
      World(seed, isOne).run();
    } catch (const Broken& broken) {
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), broken.what());
      return 1;
    }
  }
  std::printf("%llu schedules: every rule holds\n", static_cast<unsigned long long>(count));
  return 0;
}
