// Whole installations by random events on the virtual clock, and the rules that hold
// whatever happens. A failure prints the seed and the rule; the seed alone tells what
// happened.
//   simulation_test [--schedules N | --seed S]

#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <stdexcept>

#include "installer/content_view.h"
#include "tests/identifiers.h"
#include "tests/platform/test_platform.h"

namespace {

using Status = ContentView::InstallationStatus;

void require(bool holds, const char* rule) {
  if (!holds) throw std::runtime_error(rule);
}

constexpr double kRounding = 1e-6;
// Around every delay of an installation.
constexpr std::array kDelays = {0.0,    0.1, 0.2499, 0.25, 0.2501, 0.3499, 0.35,
                                0.3501, 1.0, 1.5,    3.0,  5.9999, 6.0,    6.0001};

/// One window, its user, the script and the system around it.
class World {
 public:
  World(std::uint64_t seed, bool isTold) : random_(seed), isTold_(isTold) {
    platform_.addInputMethod();
    platform_.applications[kBase + ".settings"] = "Settings.app";
    platform_.afterBlock = [this] { check(); };
    // As the screens do.
    screen_ = view_->installationStatus.observe([this](const Status& status, auto) {
      const bool isWaiting = status.is(Status::waitingEnable);
      isWaiting ? view_->enableWaitingViewDidAppear() : view_->enableWaitingViewDidDisappear();
    });
  }

  void run() {
    const std::size_t before = below(3);
    for (std::size_t i = 0; i < 20; ++i) {
      const auto& [name, happen] = i == before ? events_.front() : any(events_);
      tell(name);
      happen();
      check();
      if (below(2) == 0) platform_.advance(any(kDelays));
    }
    if (below(2) == 0) settle();
    closeWindow();
  }

 private:
  std::size_t below(std::size_t bound) { return std::size_t(random_() % bound); }
  template <class List>
  const typename List::value_type& any(const List& list) {
    return list[below(list.size())];
  }

  // What may happen.
  const std::vector<std::pair<const char*, std::function<void()>>> events_ = {
      {"the button is pressed", [this] { pressButton(); }},
      {"the script finishes", [this] { platform_.childOutput.call("finish\n"); }},
      {"the script ends well", [this] { endScript(0); }},
      {"the script fails", [this] { endScript(below(2) == 0 ? 1 : -128); }},
      {"the bundle is there", [this] { platform_.putInstalledBundle(); }},
      {"sources have changed", [this] { platform_.notifyEnabledSourcesChanged(); }},
      {"the user allows", [this] { platform_.allow(); }},
      {"the user denies", [this] { platform_.allow(false); }},
      {"the mode is selected", [this] { platform_.current = platform_.mode; }},
      {"another is selected", [this] { platform_.current = platform_.base; }},
      {"a selection works, or not", [this] { flip(platform_.appliesSelect); }},
      {"the service answers, or not", [this] { flip(platform_.answersNoList); }},
      {"the service refuses", [this] { platform_.statuses["select"] = {-50}; }},
  };

  /// The button that is on the screen, if there is one.
  void pressButton() {
    if (is(Status::waitingEnable)) return view_->userPressedGoEnable();
    if (view_->isInstalling || is(Status::success)) return;
    run_ = {};
    is(Status::needAdmin) ? view_->userPressedRetryAuthorisation() : view_->userPressedInstall();
  }

  void endScript(int error) {
    platform_.adminScriptError.reset();
    if (error == 0)
      platform_.putInstalledBundle();
    else
      platform_.adminScriptError = {error, std::nullopt};
    platform_.runWorker();
  }

  static void flip(bool& flag) { flag = !flag; }

  /// The user allows everything, and every script ends.
  void settle() {
    platform_.statuses.clear();
    platform_.answersNoList = false;
    platform_.appliesSelect = true;
    platform_.allow();
    endScript(0);
    // The delayed block, then at most 3 seconds of standing back and one poll.
    platform_.advance(5.0);
    require(!is(Status::waitingEnable), "what the user allows ends the waiting");
    require(!is(Status::installing) || view_->didTriggerActivation,
            "a script's end moves the run on");
  }

  void closeWindow() {
    screen_.reset();
    const std::weak_ptr<ContentView> gone = view_;
    view_.reset();
    require(gone.expired(), "nothing keeps the view");
    require(platform_.liveTimers() == 0 && platform_.liveObservers == 0 &&
                platform_.runningChildren == 0,
            "nothing watches any more");
    platform_.runWorker();
    platform_.takeJournal();
    platform_.notifyEnabledSourcesChanged();
    platform_.advance(20.0);
    require(platform_.takeJournal().empty(), "without a view nothing happens");
    require(platform_.scheduled.empty(), "nothing is left");
  }

  // The rules, after every block and event.

  void check() {
    if (!view_) return;
    for (const std::string& line : platform_.takeJournal()) checkCall(line);
    if (is(Status::success) && !status_.is(Status::success)) checkSuccess();
    status_ = view_->installationStatus;
  }

  void checkSuccess() const {
    const std::string path = view_->logText->substr(view_->logText->rfind("启用路径："));
    const bool isOverwrite = path.starts_with("启用路径：覆盖安装");
    require(isOverwrite || platform_.current == platform_.mode, "success needs the mode selected");
    require(!view_->isInstalling && view_->installProgress == 1.0, "success ends the run");
    require(platform_.liveObservers == 0, "success stops observing");
  }

  void checkCall(const std::string& line) {
    tell("  " + line);
    const auto begins = [&](const char* words) { return line.starts_with(words); };
    if (begins("register")) require(++registrations_[line] == 1, "registration is once per window");
    if (begins("run") || begins("open application") || begins("disable"))
      require(++run_.calls[line] == 1, "agents, settings and disabling are once per run");
    if (begins("disable")) require(!run_.enabledAt, "disabling comes before the first request");
    if (begins("activate") || begins("enable") || begins("select"))
      require(!status_.isOver() || !view_->installationStatus->isOver(),
              "nothing is asked for once a run is over");
    if (line == "enable " + kBase) checkRequest();
  }

  void checkRequest() {
    require(registrations_.size() == 2, "registration comes before the request");
    const auto& isEnabled = platform_.base->properties[platform::InputSourceProperty::isEnabled];
    require(isEnabled == platform::PropertyListValue(false),
            "nothing is requested while the base source is enabled");
    require(!run_.enabledAt || platform_.elapsed - *run_.enabledAt >= 6.0 - kRounding,
            "requests are 6 seconds apart");
    run_.enabledAt = platform_.elapsed;
  }

  bool is(Status::Case value) const { return view_->installationStatus->is(value); }
  void tell(const std::string& line) const {
    if (isTold_) std::printf("%9.4f %s\n", platform_.elapsed, line.c_str());
  }

  std::mt19937_64 random_;
  bool isTold_;
  test::Platform platform_;
  std::shared_ptr<ContentView> view_ = ContentView::create();
  platform::Observation screen_;

  /// Since the button was pressed.
  struct Run {
    std::map<std::string, int> calls;
    std::optional<double> enabledAt;
  } run_;
  std::map<std::string, int> registrations_;
  // As of the last check.
  Status status_{Status::notStarted};
};

}  // namespace

int main(int argc, char** argv) {
  const bool isOne = argc == 3 && argv[1] == std::string("--seed");
  const std::uint64_t number = argc == 3 ? std::strtoull(argv[2], nullptr, 10) : 10'000;
  const std::uint64_t first = isOne ? number : 1;
  for (std::uint64_t seed = first; seed <= number; ++seed) {
    try {
      World(seed, isOne).run();
    } catch (const std::exception& broken) {
      std::printf("seed %llu: %s\n", static_cast<unsigned long long>(seed), broken.what());
      return 1;
    }
  }
  std::printf("every rule holds\n");
  return 0;
}
