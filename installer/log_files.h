// The two log files of an installation, and what other code looks for in them.

#pragma once

#include <string_view>

/// Written by the install script, followed by the installer. Paths are as the product
/// names them.
inline constexpr const char* kInstallLogPath = "/tmp/tessal_installer.log";
/// Written by the installer: what it did, and every piece of the install log.
inline constexpr const char* kUILogPath = "/tmp/tessal_installer_ui.log";

// The install log ends with one of these; the script writes them.
inline constexpr std::string_view kFinish = "finish";
inline constexpr std::string_view kError = "error";

// In the UI log.
/// The reason follows.
inline constexpr const char* kScriptFailed = "管理员授权失败: ";
inline constexpr const char* kNoScript = "未找到 install.sh";
inline constexpr const char* kEnableRequested = "已调用 TISEnableInputSource（fresh:enableBase=";
inline constexpr const char* kOverwriteInstall = "启用路径：覆盖安装";
inline constexpr const char* kModeSelected = "，ok=true）";
