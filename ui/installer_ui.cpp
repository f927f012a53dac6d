#include "ui/installer_ui.h"

#include <QtGlobal>

#include "ui/progress_item.h"

// Named by the build after the module. In a static library nothing else refers
// to them.
void qml_register_types_Orvane_Installer();

void registerInstallerUi() {
  Q_INIT_RESOURCE(qmlcache_orvane_ui);
  qml_register_types_Orvane_Installer();
  ProgressItem::installAccessibility();
}

QUrl contentBodyUrl() {
  return QUrl(QStringLiteral("qrc:/qt-project.org/imports/Orvane/Installer/ContentBody.qml"));
}
