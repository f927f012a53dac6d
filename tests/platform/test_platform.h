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
  double elapsed = 0.0;
  /// Blocks given to the worker; the test runs them.
  std::vector<platform::Block> workerBlocks;
  void runWorker();
  std::size_t liveTimers() const;
  std::deque<platform::Block> queue;
  std::vector<std::weak_ptr<Scheduled>> scheduled;
  /// Those that nobody can take back.
  std::vector<std::shared_ptr<Scheduled>> unowned;

  /// One line a call, such as "enable com.tessal.inputmethod.Orvane".
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

  // The administrator script and the follower of the log.
  std::optional<platform::AdminScriptError> adminScriptError;
  std::function<void()> duringAdminScript;
  std::optional<std::string> launchProblem;
  std::optional<std::string> workerProblem;
  platform::ChildProcess::OutputHandler outputHandler;

  // The input-source service.
  std::vector<std::shared_ptr<platform::InputSourceObject>> sources;
  platform::InputSource current;
  bool answersNoList = false;
  /// Statuses that the next calls of this name answer, then 0.
  std::map<std::string, std::vector<platform::Status>> statuses;
  /// Whether a successful call changes the source, as the real service does.
  bool appliesEnable = false;
  bool appliesSelect = false;
  std::shared_ptr<platform::InputSourceObject> addSource(const std::string& bundleID,
                                                         const std::string& sourceID);
  /// The base and pinyin sources, disabled.
  void addInputMethod();
  void setEnabled(const std::string& sourceID, bool enabled);
  /// Posts the enabled-sources notification to the main queue.
  void notifyEnabledSourcesChanged();
  platform::HandlerList<> enabledSourcesObservers;
  int liveObservers = 0;

  std::map<std::string, platform::PropertyListValue> preferences;

  // The workspace.
  std::set<std::string> refusedUrls;
  std::map<std::string, std::filesystem::path> applications;

  // The window.
  struct Window {
    double scale = 1.0;
    platform::Rect frame{100, 100, 400, 330};
    double titleBarHeight = 30.0;
    std::function<bool()> shouldClose;
  } window;
  platform::HostWindow hostWindow();
};

/// The platform of the running test; null between two tests.
extern Platform* active;

/// Adds a line to its journal.
void note(const std::string& line);

}  // namespace test
