// Entry to the screens.

#pragma once

#include <QUrl>

/// Makes the types of the screens known to QML. Once, before any of them is
/// loaded.
void registerInstallerUi();

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
