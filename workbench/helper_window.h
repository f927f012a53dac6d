// What the helper programs with a window have in common.

#pragma once

#include <QQmlApplicationEngine>
#include <QString>
#include <QVariantMap>

/// Shows the window "`name`.qml" with these properties. The engine owns it. The main loop ends when
/// the user has answered or closed it.
QObject* openHelperWindow(QQmlApplicationEngine& engine, const QString& name,
                          const QVariantMap& properties);
