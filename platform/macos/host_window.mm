#include "platform/host_window.h"

#import <AppKit/AppKit.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <string>
#include <utility>

#include "platform/bundle.h"
#include "platform/macos/ns_string.h"
#include "platform/macos/standard_menu.h"
#include "platform/main_queue.h"

namespace platform {

namespace {

// What the window does when the user closes it, and once it is on screen. It belongs
// to the window and so outlives the HostWindow.
class WindowGuard final : public QObject {
 public:
  static WindowGuard& of(QWindow& window) {
    for (QObject* child : window.children()) {
      if (auto* guard = dynamic_cast<WindowGuard*>(child)) return *guard;
    }
    return *new WindowGuard(window);  // the window owns it
  }

  std::function<bool()> shouldClose = [] { return true; };

  /// Runs `action` when the toolkit has shown the window; at once if it has already.
  void whenShown(std::function<void()> action) {
    if (window_.isExposed()) return action();
    afterShowing_ = std::move(action);
  }

  // Qt owns the window's delegate, so the question is asked from Qt's close event.
  // Quitting sends close events too, but an application that terminates does not
  // ask its windows: the quit event, which comes first, is the sign.
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::Quit) quitting_ = true;
    if (watched != &window_) return false;
    if (event->type() == QEvent::Expose && window_.isExposed() && afterShowing_) {
      QMetaObject::invokeMethod(this, std::exchange(afterShowing_, nullptr), Qt::QueuedConnection);
    }
    if (event->type() != QEvent::Close || quitting_ || shouldClose()) return false;
    event->ignore();
    return true;
  }

 private:
  explicit WindowGuard(QWindow& window) : QObject(&window), window_(window) {
    QCoreApplication::instance()->installEventFilter(this);
  }

  QWindow& window_;
  std::function<void()> afterShowing_;
  bool quitting_ = false;
};

// Asked each time: Qt may give a QWindow a new NSWindow.
NSWindow* nativeOf(const QWindow& window) {
  return ((__bridge NSView*)reinterpret_cast<void*>(window.winId())).window;
}

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

  NSWindow* native() const { return nativeOf(window); }
};

HostWindow::HostWindow(QWindow& window) : impl_(std::make_unique<Impl>(window)) {
  assertMainThread();
  // Content reaches under a transparent title bar only with this bit, which Qt
  // does not set. It is set before anything is measured, because it changes
  // which frame belongs to a content rectangle.
  NSWindow* native = impl_->native();
  native.styleMask |= NSWindowStyleMaskFullSizeContentView;
  // Qt lets every window fill the screen, and works out the style anew after that.
  native.collectionBehavior =
      (native.collectionBehavior & ~NSWindowCollectionBehaviorFullScreenPrimary) |
      NSWindowCollectionBehaviorFullScreenNone;
  completeStandardMenu();
}

HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;

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
  // For assistive tools.
  window.accessibilityTitle = toNSString(bundleInfoText("CFBundleDisplayName").value_or(""));
  window.titlebarAppearsTransparent = YES;
}

void HostWindow::removeSizeControls() {
  NSWindow* native = impl_->native();
  native.styleMask &= ~NSWindowStyleMaskMiniaturizable;
  [native standardWindowButton:NSWindowMiniaturizeButton].enabled = NO;
  [native standardWindowButton:NSWindowZoomButton].enabled = NO;
  // A window that cannot be resized may say that it is zoomed. Qt asks when it shows
  // the window, and would move it. The fixed content size holds until then.
  WindowGuard::of(impl_->window).whenShown([window = &impl_->window] {
    nativeOf(*window).styleMask &= ~NSWindowStyleMaskResizable;
  });
}

void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  WindowGuard::of(impl_->window).shouldClose = std::move(shouldClose);
}

}  // namespace platform
