#include <utf8.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "installer/content_view.h"
#include "installer/log_files.h"
#include "platform/child_process.h"
#include "platform/file_root.h"
#include "platform/log_file.h"

namespace {

struct Marker {
  std::string_view phrase;
  double progress;
};

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
};
constexpr Marker kFinishMarker = {kFinish, 0.94};

// A phrase that holds one before it would never count.
static_assert(std::ranges::all_of(kMarkers, [](const Marker& later) {
  return std::ranges::none_of(kMarkers.data(), &later, [&](const Marker& earlier) {
    return later.phrase.find(earlier.phrase) != std::string_view::npos;
  });
}));

constexpr LinearAnimation kMarkerAnimation{platform::Seconds(0.25)};

/// Starts `tail` on this log. Absent on success, else why not.
std::optional<std::string> follow(const std::string& log, platform::ChildProcess& tail) {
  // "/tmp" is open to everyone. Another account's file could hold "finish"; a link could
  // show this user's private files.
  const std::string foreign = log + ": 不是当前用户或 root 自己的普通文件";
  if (!platform::isOwnLogFile(log)) return foreign;
  if (auto problem = tail.launch()) return problem;
  // It may have been replaced before "tail" opened it.
  if (platform::isOwnLogFile(log)) return std::nullopt;
  tail.terminate();
  return foreign;
}

}  // namespace

std::shared_ptr<platform::ChildProcess> ContentView::startFollowingInstallLog() {
  const auto handle = [view = weak_from_this()](std::string_view piece) {
    // A piece that does not decode is dropped: nothing may be shown garbled.
    if (piece.empty() || !utf8::is_valid(piece.begin(), piece.end())) return;
    platform::asyncOnMain([view, text = std::string(piece)] {
      if (const auto self = view.lock()) self->handleInstallLogChunk(text);
    });
  };
  const std::string log = platform::onDisk(kInstallLogPath).string();
  const std::vector<std::string> arguments = {"-n", "+1", "-F", log};
  auto tail = std::make_shared<platform::ChildProcess>("/usr/bin/tail", arguments, handle);
  tails_.push_back(tail);
  if (const auto problem = follow(log, *tail)) appendUILog("无法启动日志跟踪: " + *problem + "\n");
  return tail;
}

void ContentView::handleInstallLogChunk(const std::string& text) {
  const auto* const marker =
      std::find_if(kMarkers.begin(), kMarkers.end(),
                   [&](const Marker& each) { return text.find(each.phrase) != std::string::npos; });
  if (marker != kMarkers.end()) {
    installProgress.set(marker->progress, kMarkerAnimation);
  } else if (text.find(kFinishMarker.phrase) != std::string::npos && !didTriggerActivation) {
    triggerActivation();
  }
  appendUILog(text);
}

void ContentView::triggerActivation() {
  didTriggerActivation = true;
  // "finish" never moves the bar back; the other phrases may.
  if (installProgress <= kFinishMarker.progress)
    installProgress.set(kFinishMarker.progress, kMarkerAnimation);
  appendUILog("开始注册并激活输入法...\n");
  postInstallActivation();
}
