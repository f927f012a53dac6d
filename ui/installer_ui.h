// Entry to the screens.

#pragma once

#include <QString>
#include <QUrl>

/// Chooses how the toolkit draws. Call it before there is an application.
void prepareToolkit();

/// Sets the font that every text starts from. Call it once there is an
/// application.
void setApplicationLook();

/// The product's name as the user sees it: the bundle's display name, or else its
/// name, or else a fixed one.
QString appDisplayName();

/// Makes the types of the screens known to QML. Once, before any of them is
/// loaded.
void registerInstallerUi();

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
