// What the helper programs with a window have in common.

#pragma once

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QString>
#include <QVariantMap>
#include <memory>

/// Starts the toolkit, once a process. Without a display the process ends here with status 69,
/// and says these words and the reason on standard error.
std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* noDisplayWords);

/// Shows the window "`name`.qml" with these properties. The engine owns it. The main loop ends when
/// the user has answered or closed it.
QObject* openHelperWindow(QQmlApplicationEngine& engine, const QString& name,
                          const QVariantMap& properties);
