#include "platform/host_window.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <utility>

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

void HostWindow::setFrame(const Rect& frame) {
  [impl_->native() setFrame:toNSRect(frame) display:YES animate:NO];
}

void HostWindow::setFixedContentSize(const Size& size) {
  NSWindow* window = impl_->native();
  window.contentMinSize = NSMakeSize(size.width, size.height);
  window.contentMaxSize = NSMakeSize(size.width, size.height);
}

void HostWindow::hideTitle() {
  NSWindow* window = impl_->native();
  window.titleVisibility = NSWindowTitleHidden;
  window.title = @"";
  window.titlebarAppearsTransparent = YES;
}

void HostWindow::removeSizeControls() {
  NSWindow* window = impl_->native();
  window.styleMask &= ~(NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable);
  [window standardWindowButton:NSWindowMiniaturizeButton].enabled = NO;
  [window standardWindowButton:NSWindowZoomButton].enabled = NO;
}

void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  CloseQuestion::of(impl_->window).shouldClose = std::move(shouldClose);
}

}  // namespace platform
