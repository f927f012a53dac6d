#include "app/tessal_input_installer_app.h"

#include <QIcon>
#include <QPixmap>
#include <QQuickItem>
#include <QScreen>
#include <QVariant>

#include "app/window_accessor.h"
#include "platform/main_queue.h"
#include "platform/pictures.h"
#include "ui/installer_ui.h"
#include "ui/system_image.h"

namespace {
// The size until the window is configured, which keeps the window's centre.
constexpr QSize kFirstSize{500, 450};
}  // namespace

TessalInputInstallerApp::TessalInputInstallerApp(QGuiApplication& application) {
  appDelegate.install(application);

  window_.setResizeMode(QQuickView::SizeRootObjectToView);
  window_.setInitialProperties({{"model", QVariant::fromValue(&model_)}});
  window_.setSource(contentBodyUrl());
#ifdef Q_OS_LINUX  // on macOS the bundle's own
  constexpr int kIconSide = 128;
  window_.setIcon(QPixmap::fromImage(toQImage(platform::applicationIcon(kIconSide))));
#endif
  QRect frame(QPoint(), kFirstSize);
  frame.moveCenter(window_.screen()->availableGeometry().center());
  window_.setGeometry(frame);
  window_.create();

  // Its parent item owns it.
  new WindowAccessor(window_.rootObject(),
                     [this](platform::HostWindow* host) { contentView_->configureWindow(host); });
  // On a later turn than the configuration, so that it appears with its final size.
  platform::asyncOnMain([this] { window_.show(); });
}

int TessalInputInstallerApp::main() {
  return QGuiApplication::exec();
}
