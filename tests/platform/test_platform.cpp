#include "tests/platform/test_platform.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <functional>
#include <sstream>
#include <utility>

#include "platform/application.h"
#include "platform/bundle.h"
#include "platform/file_root.h"
#include "platform/preferences.h"
#include "platform/workspace.h"

namespace {

struct Scheduled {
  double due;
  double interval;  // negative: once
  platform::Block block;
};

test::Platform* active = nullptr;
std::deque<platform::Block> queue;
std::vector<std::weak_ptr<Scheduled>> scheduled;
std::vector<std::shared_ptr<Scheduled>> unowned;

std::shared_ptr<Scheduled> schedule(platform::Seconds delay, bool repeats, platform::Block block) {
  auto entry = std::make_shared<Scheduled>(
      Scheduled{active->elapsed + delay.count(), repeats ? delay.count() : -1.0, std::move(block)});
  scheduled.push_back(entry);
  return entry;
}

void note(const std::string& line) {
  active->journal.push_back(line);
}

std::string text(const platform::InputSource& source, platform::InputSourceProperty property) {
  const auto found = source->properties.find(property);
  const auto* value = found == source->properties.end() ? nullptr : found->second.as<std::string>();
  return value ? *value : "?";
}

platform::Status act(const std::string& call, const platform::InputSource& source) {
  note(call + " " + text(source, platform::InputSourceProperty::inputSourceID));
  auto& answers = active->statuses[call];
  if (answers.empty()) return platform::kNoError;
  const platform::Status status = answers.front();
  answers.erase(answers.begin());
  return status;
}

bool isEnabled(const platform::InputSourceObject& source) {
  const auto found = source.properties.find(platform::InputSourceProperty::isEnabled);
  return found != source.properties.end() && found->second == platform::PropertyListValue(true);
}

}  // namespace

namespace test {

Platform::Platform() {
  active = this;
  std::string pattern = std::filesystem::temp_directory_path() / "orvane-test-XXXXXX";
  root = ::mkdtemp(pattern.data());
  std::filesystem::create_directories(root / "tmp");
}

Platform::~Platform() {
  queue.clear();
  unowned.clear();
  std::filesystem::remove_all(root);
  active = nullptr;
}

void Platform::drain() {
  while (!queue.empty()) {
    const platform::Block block = std::move(queue.front());
    queue.pop_front();
    block();
  }
}

void Platform::advance(double seconds) {
  constexpr double kRounding = 1e-9;
  const double end = elapsed + seconds;
  for (;;) {
    drain();
    std::shared_ptr<Scheduled> next;
    std::erase_if(scheduled, [](const auto& entry) { return entry.expired(); });
    for (const auto& weak : scheduled)
      if (auto entry = weak.lock(); entry && (!next || entry->due < next->due)) next = entry;
    if (!next || next->due > end + kRounding) break;
    elapsed = std::max(elapsed, next->due);
    if (next->interval >= 0)
      next->due += next->interval;
    else
      std::erase_if(scheduled, [&](const auto& entry) { return entry.lock() == next; });
    std::erase(unowned, next);
    const platform::Block block = next->block;
    block();
  }
  elapsed = end;
}

void Platform::runWorker() {
  for (const auto& block : std::exchange(workerBlocks, {})) block();
}

std::size_t Platform::liveTimers() const {
  return std::count_if(scheduled.begin(), scheduled.end(), [](const auto& entry) {
    const auto live = entry.lock();
    return live && live->interval >= 0;
  });
}

std::vector<std::string> Platform::takeJournal() {
  return std::exchange(journal, {});
}

void Platform::putFile(const std::filesystem::path& path, const std::string& content) {
  const auto file = platform::onDisk(path);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

std::string Platform::readFile(const std::filesystem::path& path) const {
  std::ostringstream content;
  content << std::ifstream(platform::onDisk(path), std::ios::binary).rdbuf();
  return content.str();
}

void Platform::putInstalledBundle() {
  const std::filesystem::path info = "/Library/Input Methods/Orvane.app/Contents/Info.plist";
  putFile(info, "");
  propertyLists[platform::onDisk(info)] = {{"CFBundleIdentifier", "com.tessal.inputmethod.Orvane"}};
}

std::shared_ptr<platform::InputSourceObject> Platform::addSource(const std::string& bundleID,
                                                                 const std::string& sourceID) {
  using platform::InputSourceProperty;
  auto source = std::make_shared<platform::InputSourceObject>();
  source->properties = {{InputSourceProperty::bundleID, bundleID},
                        {InputSourceProperty::inputSourceID, sourceID},
                        {InputSourceProperty::isEnabled, false},
                        {InputSourceProperty::isSelectCapable, true}};
  sources.push_back(source);
  return source;
}

void Platform::addInputMethod() {
  addSource("com.tessal.inputmethod.Orvane", "com.tessal.inputmethod.Orvane");
  const auto mode =
      addSource("com.tessal.inputmethod.Orvane", "com.tessal.inputmethod.Orvane.pinyin");
  mode->properties[platform::InputSourceProperty::inputModeID] =
      "com.tessal.inputmethod.Orvane.pinyin";
}

void Platform::setEnabled(const std::string& sourceID, bool enabled) {
  for (const auto& source : sources)
    if (text(source, platform::InputSourceProperty::inputSourceID) == sourceID)
      source->properties[platform::InputSourceProperty::isEnabled] = enabled;
}

void Platform::notifyEnabledSourcesChanged() {
  for (platform::Block* observer : observers) platform::async(*observer);
}

platform::HostWindow Platform::hostWindow() {
  return platform::HostWindow(nullptr);
}

}  // namespace test

namespace platform {
namespace {

class VirtualWorkItem : public WorkItem {
 public:
  explicit VirtualWorkItem(std::shared_ptr<Scheduled> entry) : entry_(std::move(entry)) {}
  void cancel() override { entry_.reset(); }

 private:
  std::shared_ptr<Scheduled> entry_;
};

class VirtualTimer : public Timer {
 public:
  explicit VirtualTimer(std::shared_ptr<Scheduled> entry) : entry_(std::move(entry)) {}

 private:
  std::shared_ptr<Scheduled> entry_;
};

class Observer : public NotificationObserver {
 public:
  explicit Observer(Block block) : block_(std::move(block)) {
    note("observe");
    active->observers.insert(&block_);
  }
  ~Observer() override {
    if (!active) return;
    note("stop observing");
    active->observers.erase(&block_);
  }

 private:
  Block block_;
};

}  // namespace

void async(Block block) {
  queue.push_back(std::move(block));
}
void asyncAfter(Seconds delay, Block block) {
  unowned.push_back(schedule(delay, false, std::move(block)));
}
std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<VirtualWorkItem>(schedule(delay, false, std::move(block)));
}
std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<VirtualTimer>(schedule(interval, true, std::move(block)));
}
WallClock::time_point now() {
  return WallClock::time_point(
      std::chrono::round<WallClock::duration>(Seconds(1'000'000.0 + active->elapsed)));
}
void asyncOnWorker(Block block) {
  active->workerBlocks.push_back(std::move(block));
}

struct ChildProcess::Impl {
  std::string command;
  bool isRunning = false;
};
ChildProcess::ChildProcess(std::string launchPath, std::vector<std::string> arguments,
                           OutputHandler outputHandler)
    : impl_(std::make_unique<Impl>()) {
  impl_->command = std::move(launchPath);
  for (const auto& argument : arguments) impl_->command += " " + argument;
  active->outputHandler = std::move(outputHandler);
}
ChildProcess::~ChildProcess() = default;
std::optional<std::string> ChildProcess::launch() {
  note("launch " + impl_->command);
  impl_->isRunning = !active->launchProblem;
  return active->launchProblem;
}
bool ChildProcess::isRunning() const {
  return impl_->isRunning;
}
void ChildProcess::terminate() {
  note("terminate");
  impl_->isRunning = false;
}
void runAndWait(const std::string& launchPath, const std::vector<std::string>& arguments) {
  std::string command = launchPath;
  for (const auto& argument : arguments) command += " " + argument;
  note("run " + command);
}

std::optional<AdminScriptError> executeAdminScript(const std::string& source) {
  note("execute " + source);
  if (active->duringAdminScript) active->duringAdminScript();
  return active->adminScriptError;
}

std::optional<std::vector<InputSource>> createInputSourceList(
    const std::optional<InputSourceFilter>& filter, bool includeAllInstalled) {
  if (active->answersNoList) return std::nullopt;
  std::vector<InputSource> list;
  for (const auto& source : active->sources) {
    if (!includeAllInstalled && !isEnabled(*source)) continue;
    if (filter) {
      const auto found = source->properties.find(filter->property);
      if (found == source->properties.end() || found->second != filter->value) continue;
    }
    list.push_back(source);
  }
  return list;
}
std::optional<PropertyListValue> getInputSourceProperty(const InputSource& source,
                                                        InputSourceProperty property) {
  const auto found = source->properties.find(property);
  if (found == source->properties.end()) return std::nullopt;
  return found->second;
}
InputSource copyCurrentKeyboardInputSource() {
  return active->current;
}
Status registerInputSource(const std::filesystem::path& bundle) {
  note("register " + bundle.lexically_relative(active->root).string());
  return kNoError;
}
Status enableInputSource(const InputSource& source) {
  const Status status = act("enable", source);
  if (active->appliesEnable && status == kNoError)
    active->setEnabled(text(source, InputSourceProperty::inputSourceID), true);
  return status;
}
Status disableInputSource(const InputSource& source) {
  return act("disable", source);
}
Status selectInputSource(const InputSource& source) {
  const Status status = act("select", source);
  if (active->appliesSelect && status == kNoError) active->current = source;
  return status;
}
Status deselectInputSource(const InputSource& source) {
  return act("deselect", source);
}
std::unique_ptr<NotificationObserver> observeEnabledInputSourcesChanged(Block block) {
  return std::make_unique<Observer>(std::move(block));
}

std::optional<PropertyListValue> copyPreferencesValue(const std::string& key,
                                                      const std::string& application,
                                                      PreferencesUser user, PreferencesHost host) {
  if (application != "com.apple.HIToolbox" || user != PreferencesUser::current ||
      host != PreferencesHost::current)
    return std::nullopt;
  const auto found = active->preferences.find(key);
  if (found == active->preferences.end()) return std::nullopt;
  return found->second;
}
void setPreferencesValue(const std::string& key, const PropertyListValue& value,
                         const std::string& application, PreferencesUser, PreferencesHost) {
  note("set " + application + " " + key);
  active->preferences[key] = value;
}
bool synchronizePreferences(const std::string& application, PreferencesUser, PreferencesHost) {
  note("synchronize " + application);
  return true;
}

std::optional<Url> parseUrl(const std::string& text) {
  return Url{text};
}
Url fileUrl(const std::filesystem::path& path) {
  return Url{"file://" + path.string()};
}
Status registerWithLaunchServices(const std::filesystem::path& bundle, bool inUpdate) {
  note("register with Launch Services " + bundle.lexically_relative(active->root).string() +
       (inUpdate ? " (update)" : ""));
  return kNoError;
}
bool openUrl(const Url& url) {
  note("open " + url.text);
  return !active->refusedUrls.contains(url.text);
}
void openApplication(const std::filesystem::path& bundle) {
  note("open application " + bundle.lexically_relative(active->root).string());
}
std::optional<std::filesystem::path> findApplication(const std::string& bundleIdentifier) {
  const auto found = active->applications.find(bundleIdentifier);
  if (found == active->applications.end()) return std::nullopt;
  return found->second;
}

std::optional<std::filesystem::path> bundleResource(const std::string& name,
                                                    const std::string& type) {
  if (!active->hasInstallScript) return std::nullopt;
  return bundleLocation() / "Contents/Resources" / (name + "." + type);
}
std::filesystem::path bundleLocation() {
  return "/Volumes/Orvane/Orvane Installer.app";
}
std::optional<PropertyListValue> bundleInfoValue(const std::string& key) {
  const auto found = active->info.find(key);
  if (found == active->info.end()) return std::nullopt;
  return found->second;
}
std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  const auto found = active->propertyLists.find(file);
  if (found == active->propertyLists.end()) return std::nullopt;
  return found->second;
}

void activateIgnoringOtherApps() {
  note("activate");
}
void terminateApplication() {
  note("terminate application");
}
void interruptAdminScript() {
  note("interrupt");
}
Image applicationIcon(int side) {
  return {side, side, std::vector<std::uint8_t>(std::size_t(side) * side * 4, 0xff)};
}
std::optional<Image> systemSymbol(const std::string&, int side) {
  return applicationIcon(side);
}

struct HostWindow::Impl {};
HostWindow::HostWindow(QWindow&) {}
HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;
HostWindow::HostWindow(HostWindow&&) noexcept = default;
double HostWindow::backingScaleFactor() const {
  return active->window.scale;
}
Rect HostWindow::frame() const {
  return active->window.frame;
}
Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  Rect frame = content;
  frame.height += active->window.titleBarHeight;
  return frame;
}
void HostWindow::setFrame(const Rect& frame, bool display, bool animate) {
  note(std::string("set frame") + (display ? ", display" : "") + (animate ? ", animate" : ""));
  active->window.frame = frame;
}
namespace {
std::string sizeText(const Size& size) {
  return std::to_string(int(size.width)) + "x" + std::to_string(int(size.height));
}
}  // namespace
void HostWindow::setContentMinSize(const Size& size) {
  note("min " + sizeText(size));
}
void HostWindow::setContentMaxSize(const Size& size) {
  note("max " + sizeText(size));
}
void HostWindow::setTitleHidden() {
  note("hide title");
}
void HostWindow::setTitle(const std::string& title) {
  note("title \"" + title + "\"");
}
void HostWindow::setTitlebarAppearsTransparent(bool transparent) {
  note(transparent ? "transparent" : "opaque");
}
unsigned HostWindow::styleMask() const {
  return active->window.styleMask;
}
void HostWindow::setStyleMask(unsigned mask) {
  note("style " + std::to_string(mask));
  active->window.styleMask = mask;
}
void HostWindow::setButtonEnabled(WindowButton button, bool enabled) {
  note(std::string(enabled ? "enable" : "disable") + " button " +
       std::to_string(static_cast<int>(button)));
}
void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  note("delegate");
  active->window.shouldClose = std::move(shouldClose);
}

std::filesystem::path onDisk(const std::filesystem::path& path) {
  return active->root / path.relative_path();
}

}  // namespace platform
