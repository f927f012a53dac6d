#include "ui/installer_ui.h"

#include <QFont>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QtGlobal>
#include <string>

#include "platform/bundle.h"

// The build names these functions after the QML module. They must be called,
// because nothing else keeps them in a static library.
void qml_register_types_Orvane_Installer();

namespace {
constexpr int kFontSize = 13;
constexpr const char* kProductName = "澄枫输入法";
}  // namespace

void prepareToolkit() {
  // Needs no GPU, starts in a third of the time and memory, and paints on the main
  // thread. On macOS it also draws what was looked at here.
  QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
}

void setApplicationLook() {
  QFont font = QGuiApplication::font();
#ifdef Q_OS_LINUX
  font.setFamily(QStringLiteral("Noto Sans CJK SC"));
#endif
  font.setPixelSize(kFontSize);
  QGuiApplication::setFont(font);
}

QString appDisplayName() {
  for (const char* key : {"CFBundleDisplayName", "CFBundleName"}) {
    const std::string name = platform::bundleInfoText(key).value_or("");
    if (!name.empty()) return QString::fromStdString(name);
  }
  return QString::fromUtf8(kProductName);
}

void registerInstallerUi() {
  Q_INIT_RESOURCE(qmlcache_orvane_ui);
  qml_register_types_Orvane_Installer();
}

QUrl contentBodyUrl() {
  return QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Installer/ContentBody.qml"));
}
