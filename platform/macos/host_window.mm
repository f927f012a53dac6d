#include "platform/host_window.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <utility>

#include "platform/macos/ns_string.h"

namespace platform {

namespace {

constexpr auto kCloseQuestion = "closeQuestion";

// Qt owns the window's delegate, so the question is asked from Qt's close
// event. Quitting sends close events too, but an application that terminates
// does not ask its windows: the quit event, which comes first, is the sign.
// It belongs to the window and so outlives the HostWindow.
class CloseQuestion final : public QObject {
 public:
  static CloseQuestion& of(QWindow& window) {
    auto* question =
        window.findChild<CloseQuestion*>(QLatin1String(kCloseQuestion), Qt::FindDirectChildrenOnly);
    return question ? *question : *new CloseQuestion(window);  // the window owns it
  }

  std::function<bool()> shouldClose = [] { return true; };

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Quit) quitting_ = true;
    if (event->type() != QEvent::Close || watched != &window_) return false;
    if (quitting_ || shouldClose()) return false;
    event->ignore();
    return true;
  }

 private:
  explicit CloseQuestion(QWindow& window) : QObject(&window), window_(window) {
    setObjectName(QLatin1String(kCloseQuestion));
    QCoreApplication::instance()->installEventFilter(this);
  }

  QWindow& window_;
  bool quitting_ = false;
};

NSRect toNSRect(const Rect& rect) {
  return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

Rect toRect(NSRect rect) {
  return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

}  // namespace

struct HostWindow::Impl {
  explicit Impl(QWindow& hosted) : window(hosted) {}

  QWindow& window;

  // Asked each time: Qt may give a QWindow a new NSWindow.
  NSWindow* native() const {
    return ((__bridge NSView*)reinterpret_cast<void*>(window.winId())).window;
  }
};

HostWindow::HostWindow(QWindow& window) : impl_(std::make_unique<Impl>(window)) {
  // Content reaches under a transparent title bar only with this bit, which Qt
  // does not set. It is set before anything is measured, because it changes
  // which frame belongs to a content rectangle.
  impl_->native().styleMask |= NSWindowStyleMaskFullSizeContentView;
}

HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;
HostWindow::HostWindow(HostWindow&&) noexcept = default;

double HostWindow::backingScaleFactor() const {
  return impl_->native().backingScaleFactor;
}

Rect HostWindow::frame() const {
  return toRect(impl_->native().frame);
}

Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  return toRect([impl_->native() frameRectForContentRect:toNSRect(content)]);
}

void HostWindow::setFrame(const Rect& frame, bool display, bool animate) {
  [impl_->native() setFrame:toNSRect(frame) display:display animate:animate];
}

void HostWindow::setContentMinSize(const Size& size) {
  impl_->native().contentMinSize = NSMakeSize(size.width, size.height);
}

void HostWindow::setContentMaxSize(const Size& size) {
  impl_->native().contentMaxSize = NSMakeSize(size.width, size.height);
}

void HostWindow::setTitleHidden() {
  impl_->native().titleVisibility = NSWindowTitleHidden;
}

void HostWindow::setTitle(const std::string& title) {
  impl_->native().title = toNSString(title);
}

void HostWindow::setTitlebarAppearsTransparent(bool transparent) {
  impl_->native().titlebarAppearsTransparent = transparent;
}

unsigned HostWindow::styleMask() const {
  return static_cast<unsigned>(impl_->native().styleMask);
}

void HostWindow::setStyleMask(unsigned mask) {
  impl_->native().styleMask = mask;
}

void HostWindow::setButtonEnabled(WindowButton button, bool enabled) {
  const auto kind =
      button == WindowButton::miniaturize ? NSWindowMiniaturizeButton : NSWindowZoomButton;
  [impl_->native() standardWindowButton:kind].enabled = enabled;
}

void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  CloseQuestion::of(impl_->window).shouldClose = std::move(shouldClose);
}

}  // namespace platform
