// The hosting window on Linux: a QWindow under a window manager.

#include "platform/host_window.h"

#include <QEvent>
#include <QWindow>
#include <utility>

namespace platform {

namespace {

// An empty title makes Qt and some window managers put another in its place.
constexpr auto kBlankTitle = "\u200b";

/// Asks when the user wants to close the window. Belongs to the window and so
/// outlives the HostWindow.
class CloseQuestion : public QObject {
 public:
  static CloseQuestion& of(QWindow& window) {
    for (QObject* child : window.children())
      if (auto* question = dynamic_cast<CloseQuestion*>(child)) return *question;
    return *new CloseQuestion(window);  // the window owns it
  }

  std::function<bool()> shouldClose;

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() != QEvent::Close || shouldClose()) return false;
    event->ignore();
    return true;
  }

 private:
  explicit CloseQuestion(QWindow& window) : QObject(&window) { window.installEventFilter(this); }
};

}  // namespace

struct HostWindow::Impl {
  QWindow& window;
};

HostWindow::HostWindow(QWindow& window) : HostWindow(std::make_unique<Impl>(Impl{window})) {}
HostWindow::HostWindow(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
HostWindow::~HostWindow() = default;

double HostWindow::backingScaleFactor() const {
  return impl_->window.devicePixelRatio();
}

Rect HostWindow::frame() const {
  const QRectF frame = impl_->window.frameGeometry();
  return {frame.x(), frame.y(), frame.width(), frame.height()};
}

Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  const QMargins margins = impl_->window.frameMargins();
  return {content.x - margins.left(), content.y - margins.top(),
          content.width + margins.left() + margins.right(),
          content.height + margins.top() + margins.bottom()};
}

void HostWindow::setFrame(const Rect& frame) {
  impl_->window.setGeometry(QRectF(frame.x, frame.y, frame.width, frame.height)
                                .marginsRemoved(QMarginsF(impl_->window.frameMargins()))
                                .toRect());
}

void HostWindow::setFixedContentSize(const Size& size) {
  const QSize fixed = QSizeF(size.width, size.height).toSize();
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
  CloseQuestion::of(impl_->window).shouldClose = std::move(shouldClose);
}

}  // namespace platform
