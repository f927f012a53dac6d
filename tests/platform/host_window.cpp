#include "platform/host_window.h"

#include <utility>

#include "tests/platform/test_platform.h"

namespace platform {

struct HostWindow::Impl {};
HostWindow::HostWindow(QWindow&) {}
HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;
HostWindow::HostWindow(HostWindow&&) noexcept = default;
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
void HostWindow::setFrame(const Rect& frame, bool display, bool animate) {
  test::note(std::string("set frame") + (display ? ", display" : "") +
             (animate ? ", animate" : ""));
  test::active->window.frame = frame;
}
namespace {
std::string sizeText(const Size& size) {
  return std::to_string(int(size.width)) + "x" + std::to_string(int(size.height));
}
}  // namespace
void HostWindow::setContentMinSize(const Size& size) {
  test::note("min " + sizeText(size));
}
void HostWindow::setContentMaxSize(const Size& size) {
  test::note("max " + sizeText(size));
}
void HostWindow::setTitleHidden() {
  test::note("hide title");
}
void HostWindow::setTitle(const std::string& title) {
  test::note("title \"" + title + "\"");
}
void HostWindow::setTitlebarAppearsTransparent(bool transparent) {
  test::note(transparent ? "transparent" : "opaque");
}
unsigned HostWindow::styleMask() const {
  return test::active->window.styleMask;
}
void HostWindow::setStyleMask(unsigned mask) {
  test::note("style " + std::to_string(mask));
  test::active->window.styleMask = mask;
}
void HostWindow::setButtonEnabled(WindowButton button, bool enabled) {
  test::note(std::string(enabled ? "enable" : "disable") + " button " +
             std::to_string(static_cast<int>(button)));
}
void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  test::note("delegate");
  test::active->window.shouldClose = std::move(shouldClose);
}

}  // namespace platform

namespace test {

platform::HostWindow Platform::hostWindow() {
  return platform::HostWindow(nullptr);
}

}  // namespace test
