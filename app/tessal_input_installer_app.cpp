#include "app/tessal_input_installer_app.h"

#include <QQuickItem>
#include <QScreen>
#include <QVariant>

#include "app/window_accessor.h"
#include "platform/main_queue.h"
#include "ui/installer_ui.h"

namespace {
// Until the window is configured, which keeps its centre.
constexpr QSize kFirstSize{500, 450};
}  // namespace

TessalInputInstallerApp::TessalInputInstallerApp(QGuiApplication& application) {
  setApplicationFont();
  appDelegate_.install(application);
  registerInstallerUi();

  window_.setResizeMode(QQuickView::SizeRootObjectToView);
  window_.setInitialProperties({{"model", QVariant::fromValue(&model_)}});
  window_.setSource(contentBodyUrl());
  QRect frame(QPoint(), kFirstSize);
  frame.moveCenter(window_.screen()->availableGeometry().center());
  window_.setGeometry(frame);
  window_.create();

  // Its parent item owns it.
  new WindowAccessor(window_.rootObject(),
                     [this](platform::HostWindow* host) { contentView_->configureWindow(host); });
  // After it has been configured, so that it appears with its final size.
  platform::async([this] { window_.show(); });
}

int TessalInputInstallerApp::main() {
  return QGuiApplication::exec();
}
