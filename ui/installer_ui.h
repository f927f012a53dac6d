// Entry to the screens.

#pragma once

#include <QGuiApplication>
#include <QUrl>
#include <memory>

/// Starts the toolkit, once a process: how it draws, its font, the types of the screens.
/// If it can open no window, the process says these words on standard error and ends with
/// status 69. They must outlive the call.
std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* noWindowsWords);

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
