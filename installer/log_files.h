// The two log files of an installation. Paths are as the product names them.

#pragma once

/// Written by the install script, followed by the installer.
inline constexpr const char* kInstallLogPath = "/tmp/tessal_installer.log";
/// Written by the installer: what it did, and every piece of the install log.
inline constexpr const char* kUILogPath = "/tmp/tessal_installer_ui.log";
