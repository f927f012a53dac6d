#include "platform/linux/input_source_state.h"

#include <QFileSystemWatcher>
#include <filesystem>
#include <memory>
#include <utility>

#include "platform/common/property_list_lookups.h"
#include "platform/linux/file_root_linux.h"
#include "platform/linux/property_list_file.h"
#include "platform/linux/status.h"

namespace platform::linux_ {

namespace {

namespace fs = std::filesystem;

fs::path stateFile() {
  return userStore() / "InputSources.plist";
}

InputSourceState stateFrom(const PropertyListDictionary& stored) {
  const auto setIn = [&](const char* key) {
    const auto texts = textsIn(stored, key);
    return std::set<std::string>(texts.begin(), texts.end());
  };
  return {setIn("registered"), setIn("allowed"), setIn("asked"), setIn("enabled"),
          textIn(stored, "current").value_or(kBuiltInLayoutId)};
}

void store(const InputSourceState& state, PropertyListDictionary& stored) {
  const auto array = [](const std::set<std::string>& texts) {
    return PropertyListArray(texts.begin(), texts.end());
  };
  stored["registered"] = array(state.registered);
  stored["allowed"] = array(state.allowed);
  stored["asked"] = array(state.asked);
  stored["enabled"] = array(state.enabled);
  stored["current"] = state.current;
}

/// Follows the state for all observers of this process; they own it together.
class StateWatch : public std::enable_shared_from_this<StateWatch> {
 public:
  static std::shared_ptr<StateWatch> shared() {
    static std::weak_ptr<StateWatch> existing;
    auto watch = existing.lock();
    if (!watch) {
      existing = watch = std::make_shared<StateWatch>();
      // File notifications need the main loop. start() compares with the state that
      // is read here, so a change before the loop runs is seen as well.
      asyncOnMain([started = existing] {
        if (const auto self = started.lock()) self->start();
      });
    }
    return watch;
  }

  Observation observe(WatchedState watched, Block block) {
    auto& observers = watched == WatchedState::enabledSources ? ofEnabledSources_ : ofEverything_;
    // The observation owns the watch as well.
    auto owned = std::make_shared<std::pair<std::shared_ptr<StateWatch>, Observation>>(
        shared_from_this(), observers.add(std::move(block)));
    return owned;
  }

 private:
  void start() {
    const fs::path folder = stateFile().parent_path();
    std::error_code error;
    fs::create_directories(folder, error);
    watcher_ = std::make_unique<QFileSystemWatcher>();
    // The folder, as the file itself gets replaced.
    watcher_->addPath(QString::fromStdString(folder.string()));
    QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(),
                     [this] { compare(); });
    compare();
  }

  void compare() {
    const InputSourceState before = std::exchange(seen_, readInputSourceState());
    if (seen_ == before) return;
    const bool isEnabledChanged = seen_.enabled != before.enabled;
    asyncOnMain([weak = weak_from_this(), isEnabledChanged] {
      const auto self = weak.lock();
      if (!self) return;
      if (isEnabledChanged) self->ofEnabledSources_.call();
      self->ofEverything_.call();
    });
  }

  InputSourceState seen_ = readInputSourceState();
  std::unique_ptr<QFileSystemWatcher> watcher_;
  HandlerList<> ofEnabledSources_;
  HandlerList<> ofEverything_;
};

}  // namespace

InputSourceState readInputSourceState() {
  return stateFrom(readPropertyListDictionary(stateFile()).value_or(PropertyListDictionary()));
}

Status changeInputSourceState(const std::function<Status(InputSourceState&)>& change) {
  Status status = kNoError;
  const bool written = editPropertyListFile(stateFile(), [&](PropertyListDictionary& stored) {
    const InputSourceState before = stateFrom(stored);
    InputSourceState after = before;
    status = change(after);
    if (after != before) store(after, stored);
  });
  return written ? status : kInputOutputError;
}

Observation observeInputSources(WatchedState watched, Block block) {
  return StateWatch::shared()->observe(watched, std::move(block));
}

}  // namespace platform::linux_
