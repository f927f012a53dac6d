#include "ui/installer_ui.h"

#include <sysexits.h>

#include <QFont>
#include <QQuickWindow>
#include <QtGlobal>
#include <cstdlib>
#include <iostream>

// The build names these functions after the QML module. They must be called,
// because nothing else keeps them in a static library.
void qml_register_types_Orvane_Installer();

namespace {
constexpr int kFontSize = 13;
const char* reason = "";

/// The toolkit aborts where it cannot open windows. This ends the program with the reason.
void endWithoutWindows(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  std::cerr << reason << std::endl;
  std::_Exit(EX_UNAVAILABLE);
}
}  // namespace

std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* withoutWindows) {
  reason = withoutWindows;
  qInstallMessageHandler(endWithoutWindows);
  // Needs no GPU, starts in a third of the time and memory, and paints on the main
  // thread. On macOS it also draws what was looked at here.
  QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
  static int argumentCount = 1;  // the others are not the toolkit's
  auto application = std::make_unique<QGuiApplication>(argumentCount, argv);
  qInstallMessageHandler(nullptr);

  QFont font = QGuiApplication::font();
#ifdef Q_OS_LINUX
  font.setFamily(QStringLiteral("Noto Sans CJK SC"));
#endif
  font.setPixelSize(kFontSize);
  QGuiApplication::setFont(font);
  Q_INIT_RESOURCE(qmlcache_orvane_ui);
  qml_register_types_Orvane_Installer();
  return application;
}

QUrl contentBodyUrl() {
  return QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Installer/ContentBody.qml"));
}
