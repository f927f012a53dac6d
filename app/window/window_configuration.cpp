#include <algorithm>

#include "app/window/window_close_interceptor.h"
#include "installer/content_view.h"
#include "platform/host_window.h"

namespace {
// In device pixels: 500 by 450 points on a screen of 2 pixels per point.
constexpr double kContentWidth = 1000.0;
constexpr double kContentHeight = 900.0;
}  // namespace

void ContentView::configureWindow(platform::HostWindow* window) {
  if (windowConfigured || !window) return;
  windowConfigured = true;

  closeInterceptor.get()->shouldBlockClose =
      installationStatus->is(InstallationStatus::waitingEnable);
  window->setShouldClose([view = weak_from_this()] {
    const auto self = view.lock();
    return !self || self->closeInterceptor.get()->windowShouldClose();
  });

  const double scale = std::max(window->backingScaleFactor(), 1.0);
  const platform::Size content{kContentWidth / scale, kContentHeight / scale};

  const platform::Rect old = window->frame();
  platform::Rect frame = window->frameRectForContentRect({0, 0, content.width, content.height});
  frame.x = old.x + old.width * 0.5 - frame.width * 0.5;
  frame.y = old.y + old.height * 0.5 - frame.height * 0.5;
  window->setFrame(frame);
  window->setFixedContentSize(content);
  window->hideTitle();
  window->removeSizeControls();
}
