#include "workbench/helper_window.h"

#include <QUrl>

QObject* openHelperWindow(QQmlApplicationEngine& engine, const QString& name,
                          const QVariantMap& properties) {
  Q_INIT_RESOURCE(qmlcache_orvane_workbench);
  engine.setInitialProperties(properties);
  engine.load(
      QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Workbench/%1.qml").arg(name)));
  if (engine.rootObjects().isEmpty()) qFatal("a part of the toolkit is missing");
  return engine.rootObjects().constFirst();
}
