#include "ui/installer_ui.h"

#include <QFont>
#include <QQuickWindow>
#include <QtGlobal>
#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/bundle.h"

// The build names these functions after the QML module. They must be called,
// because nothing else keeps them in a static library.
void qml_register_types_Orvane_Installer();

namespace {
constexpr int kFontSize = 13;
constexpr const char* kProductName = "澄枫输入法";
constexpr int kNoWindows = 69;
const char* words = "";

/// The toolkit aborts where it can open no window; this ends the program with the words.
void endWithoutWindows(QtMsgType type, const QMessageLogContext& /*context*/,
                       const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  std::cerr << words << std::endl;
  std::_Exit(kNoWindows);
}
}  // namespace

std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* noWindowsWords) {
  words = noWindowsWords;
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

QString appDisplayName() {
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    const std::string name = platform::bundleInfoText(key).value_or("");
    if (!name.empty()) return QString::fromStdString(name);
  }
  return QString::fromUtf8(kProductName);
}

QUrl contentBodyUrl() {
  return QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Installer/ContentBody.qml"));
}
