// The hosting window on Linux: a QWindow under a window manager.

#include "platform/host_window.h"

#include <QEvent>
#include <QWindow>
#include <cmath>
#include <utility>

namespace platform {

namespace {

// An empty title makes Qt and some window managers put another in its place.
constexpr auto kBlankTitle = "\u200b";

Rect toRect(const QRect& rect) {
  return {static_cast<double>(rect.x()), static_cast<double>(rect.y()),
          static_cast<double>(rect.width()), static_cast<double>(rect.height())};
}

/// The largest size in whole points, up to this one, that is one in whole pixels too.
/// The edge of another is drawn only in part, and stays dark.
QSize wholeSize(const QWindow& window, const QSizeF& size) {
  const auto whole = [ratio = window.devicePixelRatio()](double length) {
    constexpr int kMostLost = 4;  // points: every quarter of a scale is whole within these
    for (int points = static_cast<int>(length); points > length - kMostLost; --points)
      if (points * ratio == std::floor(points * ratio)) return points;
    return static_cast<int>(length);
  };
  return {whole(size.width()), whole(size.height())};
}

/// What the window does when the user asks it to close or minimises it. Belongs
/// to the window and so outlives the HostWindow.
class WindowGuard : public QObject {
 public:
  static WindowGuard& of(QWindow& window) {
    for (QObject* child : window.children())
      if (auto* guard = dynamic_cast<WindowGuard*>(child)) return *guard;
    return *new WindowGuard(window);  // the window owns it
  }

  std::function<bool()> shouldClose = [] { return true; };

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Close && !shouldClose()) {
      event->ignore();
      return true;
    }
    // Not every window manager keeps to the hint.
    if (event->type() == QEvent::WindowStateChange &&
        window_.windowStates().testFlag(Qt::WindowMinimized) &&
        !window_.flags().testFlag(Qt::WindowMinimizeButtonHint))
      window_.showNormal();
    return false;
  }

 private:
  explicit WindowGuard(QWindow& window) : QObject(&window), window_(window) {
    window.installEventFilter(this);
  }

  QWindow& window_;
};

}  // namespace

struct HostWindow::Impl {
  QWindow& window;
};

HostWindow::HostWindow(QWindow& window) : HostWindow(std::make_unique<Impl>(Impl{window})) {}
HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;
HostWindow::HostWindow(HostWindow&&) noexcept = default;

double HostWindow::backingScaleFactor() const {
  return impl_->window.devicePixelRatio();
}

Rect HostWindow::frame() const {
  return toRect(impl_->window.frameGeometry());
}

Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  const QMargins margins = impl_->window.frameMargins();
  return {content.x - margins.left(), content.y - margins.top(),
          content.width + margins.left() + margins.right(),
          content.height + margins.top() + margins.bottom()};
}

void HostWindow::setFrame(const Rect& frame) {
  const QRectF content = QRectF(frame.x, frame.y, frame.width, frame.height)
                             .marginsRemoved(QMarginsF(impl_->window.frameMargins()));
  const QSize size = wholeSize(impl_->window, content.size());
  impl_->window.setGeometry(
      QRectF(content.center() - QPointF(size.width(), size.height()) / 2, size).toRect());
}

void HostWindow::setFixedContentSize(const Size& size) {
  const QSize fixed = wholeSize(impl_->window, {size.width, size.height});
  impl_->window.setMinimumSize(fixed);
  impl_->window.setMaximumSize(fixed);
}

void HostWindow::hideTitle() {
  // The window manager draws the title, outside the content; a blank one is hidden.
  impl_->window.setTitle(QString::fromUtf8(kBlankTitle));
}

void HostWindow::removeSizeControls() {
  // There is no hint against resizing: a window of fixed size cannot be resized.
  impl_->window.setFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint |
                         Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
}

void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  WindowGuard::of(impl_->window).shouldClose = std::move(shouldClose);
}

}  // namespace platform
