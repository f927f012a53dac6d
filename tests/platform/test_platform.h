// A platform in memory for unit tests: a virtual clock, scripted services, and a
// journal of every call made to them, in order.

#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/admin_script.h"
#include "platform/child_process.h"
#include "platform/host_window.h"
#include "platform/main_queue.h"
#include "platform/property_list.h"
#include "platform/text_input_sources.h"

namespace platform {

struct HostWindow::Impl {};
struct InputSourceObject {
  std::map<InputSourceProperty, PropertyListValue> properties;
};

}  // namespace platform

namespace test {

struct Scheduled;

/// Everything behind the contract. A test makes one; it is the platform while it
/// lives.
class Platform {
 public:
  Platform();
  ~Platform();

  // The virtual clock and the main queue. Time passes only here.
  /// Runs what is on the main queue now, and what that puts there.
  void drain();
  /// Lets time pass, running what comes due at the very time it is due.
  void advance(double seconds);
  /// Called after every block of the main queue.
  std::function<void()> afterBlock;
  double elapsed = 0.0;
  std::vector<platform::Block> workerBlocks;
  /// Runs the blocks given to the worker, and what they put on the main queue.
  void runWorker();
  std::size_t liveTimers() const;
  std::deque<platform::Block> queue;
  std::vector<std::shared_ptr<Scheduled>> scheduled;

  /// One line a call, such as "enable com.apple.keylayout.US".
  std::vector<std::string> journal;
  /// The journal so far, which is empty afterwards.
  std::vector<std::string> takeJournal();

  // The product's paths lie in this folder of the test's own.
  std::filesystem::path root;
  void putFile(const std::filesystem::path& path, const std::string& content);
  std::string readFile(const std::filesystem::path& path) const;
  /// An installed input-method bundle with its information dictionary.
  void putInstalledBundle();

  // The bundle.
  bool hasInstallScript = true;
  std::map<std::string, platform::PropertyListValue> info;
  /// What readPropertyListDictionary answers, by path on disk.
  std::map<std::filesystem::path, platform::PropertyListDictionary> propertyLists;

  /// Owners and groups of files, by path on disk; all others are root's.
  std::map<std::filesystem::path, std::string> owners;
  bool isAdministrator = true;

  // The administrator script and the follower of the log.
  std::optional<platform::AdminScriptError> adminScriptError;
  std::function<void()> duringAdminScript;
  std::function<void()> duringLaunch;
  std::optional<std::string> launchProblem;
  /// What is written here comes from every child that runs.
  platform::HandlerList<std::string_view> childOutput;
  int runningChildren = 0;

  // The input-source service.
  std::vector<std::shared_ptr<platform::InputSourceObject>> sources;
  platform::InputSource current;
  bool answersNoList = false;
  bool listsNoEnabled = false;
  /// Statuses that the next calls of this name answer, then 0.
  std::map<std::string, std::vector<platform::Status>> statuses;
  /// Whether a successful call makes the source the current one, as in the real service.
  bool appliesSelect = false;
  std::shared_ptr<platform::InputSourceObject> addSource(const std::string& bundleID,
                                                         const std::string& sourceID);
  /// A keyboard layout that is in use; the pinyin and base sources, disabled.
  void addInputMethod();
  std::shared_ptr<platform::InputSourceObject> mode, base;
  /// What the user answers for the pinyin and base sources.
  void allow(bool isAllowed = true);
  /// Posts the enabled-sources notification to the main queue.
  void notifyEnabledSourcesChanged();
  platform::HandlerList<> enabledSourcesObservers;
  int liveObservers = 0;

  /// Of the one domain that the product uses, for the current user and host; others have none.
  std::map<std::string, platform::PropertyListValue> preferences;

  // The workspace.
  std::set<std::string> refusedUrls;
  std::map<std::string, std::filesystem::path> applications;

  // The window, which platform::HostWindow(nullptr) gives.
  struct Window {
    double scale = 1.0;
    platform::Rect frame{100, 100, 400, 330};
    double titleBarHeight = 30.0;
    std::function<bool()> shouldClose;
  } window;
};

/// The platform of the running test; null between two tests.
extern Platform* active;

/// Adds a line to its journal.
void note(const std::string& line);

/// A copy of what stands under the key; absent if nothing does.
template <class Map>
std::optional<typename Map::mapped_type> valueIn(const Map& map,
                                                 const typename Map::key_type& key) {
  const auto found = map.find(key);
  return found != map.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace test
