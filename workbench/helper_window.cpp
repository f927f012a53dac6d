#include "workbench/helper_window.h"

#include <QUrl>
#include <cstdlib>
#include <iostream>

#include "ui/installer_ui.h"

namespace {

constexpr int kNoDisplay = 69;
const char* fatalWords = "";

/// Drops the toolkit's messages for its own developers: they may tell which keys
/// were pressed.
void report(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  if (type == QtFatalMsg) std::cerr << fatalWords << ": ";
  std::cerr << message.toStdString() << '\n';
  if (type == QtFatalMsg) std::_Exit(kNoDisplay);
}

}  // namespace

std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* noDisplayWords) {
  fatalWords = noDisplayWords;
  qInstallMessageHandler(report);
  prepareToolkit();
  static int argumentCount = 1;  // the others are not the toolkit's
  auto application = std::make_unique<QGuiApplication>(argumentCount, argv);
  setApplicationLook();
  registerInstallerUi();
  return application;
}

QObject* openHelperWindow(QQmlApplicationEngine& engine, const QString& name,
                          const QVariantMap& properties) {
  Q_INIT_RESOURCE(qmlcache_orvane_workbench);
  engine.setInitialProperties(properties);
  engine.load(
      QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Workbench/%1.qml").arg(name)));
  if (engine.rootObjects().isEmpty()) qFatal("a part of the toolkit is missing");
  return engine.rootObjects().constFirst();
}
