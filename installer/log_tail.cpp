#include <utf8.h>

#include <array>

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

}  // namespace

std::shared_ptr<platform::ChildProcess> ContentView::startFollowingInstallLog() {
  const std::weak_ptr<ContentView> view = weak_from_this();
  auto tail = std::make_shared<platform::ChildProcess>(
      "/usr/bin/tail",
      std::vector<std::string>{"-n", "+1", "-F", platform::onDisk(kInstallLogPath).string()},
      [view](std::string_view piece) {
        // A piece that does not decode is dropped: nothing may be shown garbled.
        if (piece.empty() || !utf8::is_valid(piece.begin(), piece.end())) return;
        platform::asyncOnMain([view, text = std::string(piece)] {
          if (const auto self = view.lock()) self->handleInstallLogChunk(text);
        });
      });
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
  if (installProgress <= 0.94) installProgress.set(0.94, kMarkerAnimation);
  appendUILog("开始注册并激活输入法...\n");
  postInstallActivation();
}
