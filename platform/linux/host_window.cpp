// The hosting window on Linux: a QWindow under a window manager.

#include "platform/host_window.h"

#include <xcb/xcb.h>
#include <xcb/xproto.h>

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace platform {

namespace {

constexpr auto kCloseQuestion = "closeQuestion";

/// Asks before the window closes. Belongs to the window and so outlives the
/// HostWindow.
class CloseQuestion : public QObject {
 public:
  CloseQuestion(QWindow& window, std::function<bool()> shouldClose)
      : QObject(&window), shouldClose_(std::move(shouldClose)) {
    setObjectName(QLatin1String(kCloseQuestion));
    window.installEventFilter(this);
  }
  bool eventFilter(QObject* /*window*/, QEvent* event) override {
    if (event->type() != QEvent::Close || shouldClose_()) return false;
    event->ignore();
    return true;
  }

 private:
  std::function<bool()> shouldClose_;
};

struct WindowHint {
  unsigned style;
  Qt::WindowType hint;
};
constexpr std::array kHints = {
    WindowHint{kTitled, Qt::WindowTitleHint},
    WindowHint{kClosable, Qt::WindowCloseButtonHint},
    WindowHint{kMiniaturizable, Qt::WindowMinimizeButtonHint},
};

/// Qt puts the name of the program in the place of an empty title.
void clearTitleOnX11(QWindow& window) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (!x11 || !window.handle()) return;
  xcb_connection_t* const connection = x11->connection();
  constexpr std::string_view kName = "_NET_WM_NAME";
  const auto cookie = xcb_intern_atom(connection, 1, kName.size(), kName.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> name(
      xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
  const auto id = static_cast<xcb_window_t>(window.winId());
  if (name) xcb_delete_property(connection, id, name->atom);
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                      0, "");
}

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
  const QRect frame = impl_->window.frameGeometry();
  return {static_cast<double>(frame.x()), static_cast<double>(frame.y()),
          static_cast<double>(frame.width()), static_cast<double>(frame.height())};
}

Rect HostWindow::frameRectForContentRect(const Rect& content) const {
  const QMargins margins = impl_->window.frameMargins();
  return {content.x - margins.left(), content.y - margins.top(),
          content.width + margins.left() + margins.right(),
          content.height + margins.top() + margins.bottom()};
}

void HostWindow::setFrame(const Rect& frame, bool /*display*/, bool /*animate*/) {
  const QRect outer = QRectF(frame.x, frame.y, frame.width, frame.height).toRect();
  impl_->window.setGeometry(outer - impl_->window.frameMargins());
}

void HostWindow::setContentMinSize(const Size& size) {
  impl_->window.setMinimumSize(QSizeF(size.width, size.height).toSize());
}

void HostWindow::setContentMaxSize(const Size& size) {
  impl_->window.setMaximumSize(QSizeF(size.width, size.height).toSize());
}

void HostWindow::setTitleHidden() {
  // The window manager draws the title: an empty one is a hidden one.
}

void HostWindow::setTitle(const std::string& title) {
  impl_->window.setTitle(QString::fromStdString(title));
  if (title.empty()) clearTitleOnX11(impl_->window);
}

void HostWindow::setTitlebarAppearsTransparent(bool /*transparent*/) {
  // The window manager's title bar lies outside the content.
}

unsigned HostWindow::styleMask() const {
  const Qt::WindowFlags flags = impl_->window.flags();
  unsigned mask = 0;
  for (const auto& [style, hint] : kHints)
    if (flags.testFlag(hint) || !flags.testFlag(Qt::CustomizeWindowHint)) mask |= style;
  if (!flags.testFlag(Qt::MSWindowsFixedSizeDialogHint)) mask |= kResizable;
  return mask;
}

void HostWindow::setStyleMask(unsigned mask) {
  Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint;
  for (const auto& [style, hint] : kHints) flags.setFlag(hint, (mask & style) != 0);
  // Its name notwithstanding, X11 has it too.
  flags.setFlag(Qt::MSWindowsFixedSizeDialogHint, (mask & kResizable) == 0);
  impl_->window.setFlags(flags);
}

void HostWindow::setButtonEnabled(WindowButton button, bool enabled) {
  impl_->window.setFlag(button == WindowButton::zoom ? Qt::WindowMaximizeButtonHint
                                                     : Qt::WindowMinimizeButtonHint,
                        enabled);
}

void HostWindow::setShouldClose(std::function<bool()> shouldClose) {
  delete impl_->window.findChild<QObject*>(QLatin1String(kCloseQuestion),
                                           Qt::FindDirectChildrenOnly);
  new CloseQuestion(impl_->window, std::move(shouldClose));  // the window owns it
}

}  // namespace platform
