#include "tests/simulation/world.h"

#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <array>

#include "tests/identifiers.h"

namespace simulation {

namespace {

using Property = platform::InputSourceProperty;
using Status = InstallationStatus;

constexpr std::array kPhrases = {
    "unzip package",
    "kill Orvane",
    "move package to install path",
    "permission change successful",
    "install Sondrel",
    "Sondrel installed successfully",
    "Cogwen installed successfully",
    "finish",
    "finish",
    "finish",
    "正在复制文件",
    "unzip package, finish",
    "Finish",
    "宋",
};

}  // namespace

Folders::Folders() {
  std::string pattern = std::filesystem::temp_directory_path() / "orvane-simulation-XXXXXX";
  root_ = ::mkdtemp(pattern.data());
  std::filesystem::create_directories(root_ / "tmp");
  std::filesystem::create_directories(root_ / "0");
  const auto name = std::filesystem::path(kBundle).filename();
  std::filesystem::create_directories(root_ / "1/Input Methods" / name);
  std::filesystem::create_directories(root_ / "2/Input Methods" / name /
                                      "Contents/MacOS/OrvaneSettings.app");
  putBundle(0);
}

Folders::~Folders() {
  std::filesystem::remove_all(root_);
}

void Folders::putBundle(int which) {
  if (which == bundle_) return;
  bundle_ = which;
  std::filesystem::remove(root_ / "Library");
  std::filesystem::create_symlink(std::to_string(which), root_ / "Library");
}

World::World(Folders& folders) : folders_(folders), platform_(folders.root()) {
  folders_.putBundle(0);
  base_ = platform_.addSource(kBase, kBase);
  mode_ = platform_.addSource(kBase, kPinyin);
  auto window = platform_.hostWindow();
  view_->configureWindow(&window);
  // As the screens do.
  screenWatch_ = view_->installationStatus.observe([this](const Status& status, auto) {
    const bool isShown = status.is(Status::waitingEnable);
    if (isShown == isScreenShown_) return;
    isScreenShown_ = isShown;
    isShown ? view_->enableWaitingViewDidAppear() : view_->enableWaitingViewDidDisappear();
  });
  platform_.drain();
  platform_.takeJournal();
  invariants_ = std::make_unique<Invariants>(platform_, *view_);
  platform_.afterBlock = [this] { check(); };
  platform_.beforeLookup = [this](const platform::InputSourceFilter* filter) {
    for (Later& later : later_)
      if (--later.lookups == 0) change(later.change);
    std::erase_if(later_, [](const Later& later) { return later.lookups <= 0; });
    if (filter && filter->property == Property::isEnabled)
      invariants_->enabledWasAsked(isBaseListedAsEnabled());
  };
}

World::~World() {
  platform_.afterBlock = nullptr;
  platform_.beforeLookup = nullptr;
  screenWatch_.reset();
  view_.reset();
}

void World::check() {
  if (platform_.queue.empty()) isResultQueued_ = false;
  if (view_) invariants_->check();
}

bool World::isBaseListedAsEnabled() const {
  return !platform_.answersNoList && std::ranges::any_of(platform_.sources, [](const auto& source) {
    return source->properties[Property::inputSourceID] == platform::PropertyListValue(kBase) &&
           source->properties[Property::isEnabled] == platform::PropertyListValue(true);
  });
}

void World::apply(const Event& event) {
  if (!view_) return;
  const int value = event.value;
  const Status& status = view_->installationStatus;
  const bool isIdle = !view_->isInstalling;
  switch (event.kind) {
    case Kind::wait:
      platform_.advance(value / 10000.0);
      break;
    case Kind::runBlocks:
      for (int i = 0; i < value && !platform_.queue.empty(); ++i) platform_.runNextBlock();
      break;
    case Kind::pressInstall:
      press(isIdle && (status.is(Status::notStarted) || status.is(Status::failed)), value,
            &ContentView::userPressedInstall, false);
      break;
    case Kind::pressRetry:
      press(isIdle && status.is(Status::needAdmin), value,
            &ContentView::userPressedRetryAuthorisation, view_->didTriggerActivation);
      break;
    case Kind::pressGoEnable:
      if (!status.is(Status::waitingEnable) && value == 0) break;
      view_->userPressedGoEnable();
      invariants_->goEnablePressed();
      break;
    case Kind::pressClose: {
      const bool mayClose = platform_.window.shouldClose();
      invariants_->closeWasAsked(mayClose);
      check();
      if (mayClose && value == 1) closeWindow();
      break;
    }
    case Kind::pressExit:
      if (!view_->showExitEnableConfirm) break;
      view_->userPressedExit();
      require(platform_.journal.back() == "terminate application" && !view_->showExitEnableConfirm,
              "exit quits");
      closeWindow();
      break;
    case Kind::scriptWrites:
      if (!platform_.workerBlocks.empty()) write(value);
      break;
    case Kind::scriptEnds:
      if (!platform_.workerBlocks.empty()) endScript(value);
      break;
    case Kind::notify:
      for (int i = 0; i <= value; ++i) platform_.notifyEnabledSourcesChanged();
      break;
    case Kind::change:
      change(value);
      break;
    case Kind::changeLater:
      later_.push_back({1 + value / 16, value % 16});
      break;
    case Kind::answerStatus:
      platform_.statuses[std::array{"enable", "disable", "select", "deselect"}.at(value % 4)]
          .assign(1 + value / 4, -50 - value);
      break;
    case Kind::bundle:
      folders_.putBundle(value);
      break;
    case Kind::screen:
      if (!status.is(Status::waitingEnable)) break;
      value == 0 ? view_->enableWaitingViewDidDisappear() : view_->enableWaitingViewDidAppear();
      break;
    case Kind::installer:
      platform_.hasInstallScript = value != 1;
      platform_.launchProblem.reset();
      if (value == 2) platform_.launchProblem = "no such tool";
      break;
  }
  check();
}

void World::press(bool isShown, int value, void (ContentView::*operation)(), bool keepsActivation) {
  if (!isShown && value == 0) return;
  invariants_->checkUILog();
  const bool isScriptPending = !platform_.workerBlocks.empty() || isResultQueued_;
  invariants_->runStarts(folders_.bundle() != 0, isScriptPending, keepsActivation);
  unread_.clear();
  (*view_.*operation)();
}

void World::write(int value) {
  unread_ += kPhrases.at(std::size_t(value) % kPhrases.size()) + std::string(" #") +
             std::to_string(++written_) + "；";
  const auto cut = unread_.size() - std::size_t(value / 256 % 3 == 0 ? value / 1024 % 8 : 0);
  const std::string piece = unread_.substr(0, cut);
  unread_.erase(0, cut);
  if (!platform_.outputHandler) return;
  if (!piece.empty() && utf8::is_valid(piece)) invariants_->pieceRead(piece);
  platform_.outputHandler(piece);
}

void World::endScript(int value) {
  static const std::array kErrors = {
      platform::AdminScriptError{-128, std::nullopt},
      platform::AdminScriptError{1, "sorry, not authorized"},
      platform::AdminScriptError{1, "disk full"},
  };
  platform_.adminScriptError.reset();
  if (value < 3) platform_.adminScriptError = kErrors.at(std::size_t(value));
  if (value >= 4) folders_.putBundle(1 + value % 2);
  invariants_->scriptEnded(value < 3);
  const platform::Block run = std::move(platform_.workerBlocks.front());
  platform_.workerBlocks.erase(platform_.workerBlocks.begin());
  run();
  isResultQueued_ = true;
}

void World::change(int value) {
  auto& sources = platform_.sources;
  const auto enable = [&](bool isEnabled) {
    for (const auto& source : {base_, mode_}) source->properties[Property::isEnabled] = isEnabled;
  };
  const auto flip = [](const auto& source, Property key) {
    auto& flag = source->properties[key];
    flag = flag == platform::PropertyListValue(false);
  };
  const auto toggle = [&](const auto& source) {
    if (std::erase(sources, source) == 0) sources.push_back(source);
  };
  const std::array<std::function<void()>, 16> changes = {
      [&] { enable(true); },
      [&] { enable(true); },
      [&] { enable(false); },
      [&] { flip(base_, Property::isEnabled); },
      [&] { flip(mode_, Property::isEnabled); },
      [&] { flip(mode_, Property::isSelectCapable); },
      [&] { platform_.current = mode_; },
      [&] { platform_.current = base_; },
      [&] { platform_.current = nullptr; },
      [&] { platform_.appliesSelect = !platform_.appliesSelect; },
      [&] { platform_.appliesSelect = !platform_.appliesSelect; },
      [&] { platform_.answersNoList = !platform_.answersNoList; },
      [&] { toggle(base_); },
      [&] { toggle(mode_); },
      [&] { std::ranges::reverse(sources); },
      [&] {  // found by its mode identifier alone
        mode_->properties[Property::inputModeID] = kPinyin;
        mode_->properties[Property::inputSourceID] = kPinyin + ".other";
      }};
  changes.at(std::size_t(value))();
}

void World::end() {
  if (!view_) return;
  later_.clear();
  platform_.statuses.clear();
  platform_.answersNoList = false;
  platform_.appliesSelect = true;
  platform_.sources = {mode_, base_};
  mode_->properties[Property::isSelectCapable] = true;
  change(0);
  platform_.drain();
  if (isScreenShown_) view_->enableWaitingViewDidAppear();
  while (!platform_.workerBlocks.empty()) endScript(7);
  // The delayed block, then at most 3 seconds of standing back and one poll.
  platform_.advance(5.0);
  invariants_->checkSettled();
  closeWindow();
}

void World::closeWindow() {
  platform_.drain();
  platform_.takeJournal();
  invariants_->checkUILog();
  screenWatch_.reset();
  const std::string log = platform_.readFile("/tmp/tessal_installer_ui.log");
  const std::weak_ptr<ContentView> gone = view_;
  view_.reset();
  require(gone.expired(), "nothing keeps the view");
  require(platform_.runningChildren == 0, "the followers end with the view");
  require(platform_.liveTimers() == 0 && platform_.liveObservers == 0, "nothing watches any more");
  platform_.takeJournal();
  if (platform_.outputHandler) platform_.outputHandler("finish");
  platform_.notifyEnabledSourcesChanged();
  platform_.runWorker();
  platform_.advance(20.0);
  for (const std::string& line : platform_.takeJournal())
    require(line.starts_with("execute") || line == "terminate",
            "without a view nothing happens: " + line);
  require(platform_.readFile("/tmp/tessal_installer_ui.log") == log, "nor is anything logged");
  require(platform_.queue.empty() && platform_.unowned.empty(), "no block is left");
  require(platform_.runningChildren == 0 && !platform_.outputHandler, "no follower is left");
}

}  // namespace simulation
