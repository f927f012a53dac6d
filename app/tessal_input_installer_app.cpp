#include "app/tessal_input_installer_app.h"

#include <QQuickItem>
#include <QScreen>
#include <QVariant>

#include "app/window_accessor.h"
#include "platform/main_queue.h"
#include "ui/installer_ui.h"
#include "ui/window_placement.h"

namespace {
// The size until the window is configured. Its centre stays then.
constexpr QSize kFirstSize{500, 450};
}  // namespace

TessalInputInstallerApp::TessalInputInstallerApp(QGuiApplication& application) {
  setApplicationLook();
  appDelegate_.install(application);
  registerInstallerUi();

  window_.setResizeMode(QQuickView::SizeRootObjectToView);
  window_.setInitialProperties({{"model", QVariant::fromValue(&model_)}});
  window_.setSource(contentBodyUrl());
  QRect frame(QPoint(), kFirstSize);
  frame.moveCenter(window_.screen()->availableGeometry().center());
  window_.setGeometry(frame);
  window_.create();

  setIconOnceShown(window_);
  // Its parent item owns it.
  new WindowAccessor(window_.rootObject(),
                     [this](platform::HostWindow* host) { contentView_->configureWindow(host); });
  // On a later turn than the configuration, so that it appears with its final size.
  platform::asyncOnMain([this] {
    keepReachable();
    window_.show();
  });
  // Once more with the title bar, which a window has when it has been drawn.
  QObject::connect(
      &window_, &QQuickWindow::frameSwapped, &window_, [this] { keepReachable(); },
      static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
}

void TessalInputInstallerApp::keepReachable() {
  const QRect frame = window_.frameGeometry();
  const QPoint place = reachablePlace(frame, window_.screen()->availableGeometry());
  if (place != frame.topLeft()) window_.setFramePosition(place);
}

int TessalInputInstallerApp::main() {
  return QGuiApplication::exec();
}
