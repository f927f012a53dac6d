#include <algorithm>
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

constexpr Marker kFinishMarker = {"finish", 0.94};
// The first one that a piece contains decides.
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
    kFinishMarker,
};

/// The first marker of the table that the text contains, or null. A log may be long:
/// all phrases are looked for in one pass. It looks at the two letters where the
/// shortest phrase would end, and steps on to where the next phrase may begin.
const Marker* firstMarkerIn(std::string_view text) {
  constexpr std::size_t kShortest = kFinishMarker.phrase.size();
  constexpr auto pair = [](const char* letters) {
    return (static_cast<unsigned char>(letters[0]) * 16U ^ static_cast<unsigned char>(letters[1])) %
           4096U;
  };
  static constexpr auto kSteps = [pair] {
    std::array<std::uint8_t, 4096> steps{};
    steps.fill(kShortest - 1);
    for (const Marker& marker : kMarkers)
      for (std::uint8_t step = 0; step <= kShortest - 2; ++step) {
        auto& least = steps.at(pair(&marker.phrase.at(kShortest - 2 - step)));
        least = std::min(least, step);
      }
    return steps;
  }();

  const auto* first = kMarkers.end();
  for (std::size_t at = 0; at + kShortest <= text.size();) {
    const std::size_t step = kSteps.at(pair(&text[at + kShortest - 2]));
    if (step == 0)
      first = std::find_if(kMarkers.begin(), first, [rest = text.substr(at)](const Marker& marker) {
        return rest.starts_with(marker.phrase);
      });
    at += std::max<std::size_t>(step, 1);
  }
  return first == kMarkers.end() ? nullptr : first;
}

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
    platform::asyncOnMain(
        [view, backlog, size = piece.size(), text = std::string(piece)]() mutable {
          if (const auto self = view.lock()) self->handleInstallLogChunk(std::move(text));
          backlog->remove(size);
        });
  };
  const auto follower = std::make_shared<Follower>(backlog, arguments, handle);
  std::shared_ptr<platform::ChildProcess> tail(follower, &follower->tail);
  tails_.push_back(tail);
  if (const auto problem = tail->launch()) appendUILog("无法启动日志跟踪: " + *problem + "\n");
  return tail;
}

void ContentView::handleInstallLogChunk(std::string text) {
  const Marker* marker = firstMarkerIn(text);
  if (marker && marker->phrase != kFinishMarker.phrase) {
    installProgress.set(marker->progress, kMarkerAnimation);
  } else if (marker && !didTriggerActivation) {
    triggerActivation();
  }
  appendUILog(std::move(text));
}

void ContentView::triggerActivation() {
  didTriggerActivation = true;
  // "finish" never moves the bar back; the other phrases may.
  if (installProgress <= kFinishMarker.progress)
    installProgress.set(kFinishMarker.progress, kMarkerAnimation);
  appendUILog("开始注册并激活输入法...\n");
  postInstallActivation();
}
