#include "platform/host_window.h"

#include <utility>

#include "tests/platform/test_platform.h"

namespace platform {

HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;
double HostWindow::backingScaleFactor() const {
  return test::active->window.scale;
}
Rect HostWindow::frame() const {
  return test::active->window.frame;
}
Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  Rect frame = content;
  frame.height += test::active->window.titleBarHeight;
  return frame;
}
void HostWindow::setFrame(const Rect& frame) {
  test::note("set frame");
  test::active->window.frame = frame;
}
void HostWindow::setFixedContentSize(const Size& size) {
  test::note("fix size " + std::to_string(int(size.width)) + "x" +
             std::to_string(int(size.height)));
}
void HostWindow::hideTitle() {
  test::note("hide title");
}
void HostWindow::removeSizeControls() {
  test::note("remove size controls");
}
void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  test::note("delegate");
  test::active->window.shouldClose = std::move(shouldClose);
}

}  // namespace platform
