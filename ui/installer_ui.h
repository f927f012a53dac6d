// Entry to the screens.

#pragma once

#include <QQuickWindow>
#include <QString>
#include <QUrl>
#include <future>

/// Chooses how the toolkit draws. Call it before there is an application.
void prepareToolkit();

/// Sets the font that every text starts from. Call it once there is an
/// application.
void setApplicationLook();

/// Reads the system's list of fonts on another thread, which takes about as long as it
/// takes to load a screen. The result must end before the application does.
[[nodiscard]] std::future<void> readFonts();

/// Gives the application's windows their icon once this one has been drawn: no
/// window shows it itself, so none has to wait for it.
void setIconOnceShown(QQuickWindow& window);

/// The product's name as the user sees it: the bundle's display name, or else its
/// name, or else a fixed one.
QString appDisplayName();

/// Makes the types of the screens known to QML. Once, before any of them is
/// loaded.
void registerInstallerUi();

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
