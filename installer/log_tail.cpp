#include <array>
#include <condition_variable>
#include <mutex>

#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/file_root.h"

namespace {

struct Marker {
  std::string_view phrase;
  double progress;
};

// Tested in this order; the first one that a piece contains decides.
constexpr std::array kMarkers = {
    Marker{"unzip package", 0.15},
    Marker{"kill Orvane", 0.25},
    Marker{"move app bundle to destination directory", 0.4},
    Marker{"move package to install path", 0.4},
    Marker{"permission change successful", 0.5},
    Marker{"install Sondrel", 0.6},
    Marker{"move Sondrel to Applications", 0.7},
    Marker{"Sondrel installed successfully", 0.8},
    Marker{"install Cogwen", 0.84},
    Marker{"move Cogwen to Applications", 0.88},
    Marker{"Cogwen installed successfully", 0.92},
};
constexpr std::string_view kFinishMarker = "finish";

constexpr LinearAnimation kMarkerAnimation{platform::Seconds(0.25)};

/// Keeps the reader of the log from running far ahead of the main queue.
class Backlog {
 public:
  /// Waits for room. The reader's thread.
  void add(std::size_t bytes) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isDropped_ || bytes_ < kMost; });
    bytes_ += bytes;
  }
  void remove(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    bytes_ -= bytes;
    changed_.notify_one();
  }
  /// Nothing waits for room any more.
  void drop() {
    const std::lock_guard lock(mutex_);
    isDropped_ = true;
    changed_.notify_one();
  }

 private:
  static constexpr std::size_t kMost = 1U << 20U;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t bytes_ = 0;
  bool isDropped_ = false;
};

struct Follower {
  Follower(std::shared_ptr<Backlog> backlog, std::vector<std::string> arguments,
           platform::ChildProcess::OutputHandler handle)
      : backlog(std::move(backlog)),
        tail("/usr/bin/tail", std::move(arguments), std::move(handle)) {}
  // The child's end waits for its reader, which must not wait for this thread.
  ~Follower() { backlog->drop(); }
  Follower(const Follower&) = delete;
  Follower& operator=(const Follower&) = delete;

  const std::shared_ptr<Backlog> backlog;
  platform::ChildProcess tail;
};

}  // namespace

std::shared_ptr<platform::ChildProcess> ContentView::startFollowingInstallLog() {
  const std::weak_ptr<ContentView> view = weak_from_this();
  const auto backlog = std::make_shared<Backlog>();
  const std::vector<std::string> arguments = {"-n", "+1", "-F",
                                              platform::onDisk(kInstallLogPath).string()};
  const auto handle = [view, backlog](std::string_view piece) {
    // A piece that does not decode is dropped: nothing may be shown garbled.
    if (piece.empty() || !isUtf8(piece)) return;
    backlog->add(piece.size());
    platform::asyncOnMain([view, backlog, text = std::string(piece)] {
      if (const auto self = view.lock()) self->handleInstallLogChunk(text);
      backlog->remove(text.size());
    });
  };
  const auto follower = std::make_shared<Follower>(backlog, arguments, handle);
  std::shared_ptr<platform::ChildProcess> tail(follower, &follower->tail);
  tail_ = tail;
  if (const auto problem = tail->launch()) appendUILog("无法启动日志跟踪: " + *problem + "\n");
  return tail;
}

void ContentView::handleInstallLogChunk(const std::string& text) {
  for (const Marker& marker : kMarkers) {
    if (text.find(marker.phrase) == std::string::npos) continue;
    installProgress.set(marker.progress, kMarkerAnimation);
    appendUILog(text);
    return;
  }
  if (text.find(kFinishMarker) != std::string::npos && !didTriggerActivation) triggerActivation();
  appendUILog(text);
}

void ContentView::triggerActivation() {
  didTriggerActivation = true;
  // "finish" never moves the bar back; the other phrases may.
  if (installProgress <= 0.94) installProgress.set(0.94, kMarkerAnimation);
  appendUILog("开始注册并激活输入法...\n");
  postInstallActivation();
}
