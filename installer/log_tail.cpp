#include <array>

#include "installer/content_view.h"

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
