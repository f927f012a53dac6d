// Entry to the screens.

#pragma once

#include <QGuiApplication>
#include <QUrl>
#include <memory>

/// Starts the toolkit, once per process: how it draws, its font, the types of the screens.
/// If it cannot open windows, the process writes `withoutWindows`, which must outlive the
/// call, to standard error and ends with status 69.
std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* withoutWindows);

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
