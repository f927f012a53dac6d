// Entry to the screens.

#pragma once

#include <QGuiApplication>
#include <QString>
#include <QUrl>
#include <memory>

/// Starts the toolkit, once a process: how it draws, its font, the types of the screens.
/// If it can open no window, the process says these words on standard error and ends with
/// status 69. They must outlive the call.
std::unique_ptr<QGuiApplication> startToolkit(char** argv, const char* noWindowsWords);

/// The product's name as the user sees it: the bundle's display name, or else its
/// name, or else a fixed one.
QString appDisplayName();

/// The content of the installer's window; its property `model` is required.
QUrl contentBodyUrl();
