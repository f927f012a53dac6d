// Entry to the screens.

#pragma once

#include <QString>
#include <QUrl>

/// What has to be settled before there is an application: how it draws.
void prepareToolkit();

/// The font that every text starts from. Once there is an application.
void setApplicationFont();

/// The product's name as the user sees it: the bundle's display name, or else its
/// name, or else a fixed one.
QString appDisplayName();

/// Makes the types of the screens known to QML. Once, before any of them is
/// loaded.
void registerInstallerUi();

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
