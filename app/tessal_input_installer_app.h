#pragma once

#include <QGuiApplication>
#include <future>
#include <memory>

#include "app/app_delegate.h"
#include "installer/content_view.h"
#include "ui/installer_model.h"
#include "ui/installer_ui.h"
#include "ui/named_window.h"

/// The application: one window, whose content is a fresh ContentView.
class TessalInputInstallerApp {
 public:
  /// Shows the window once the main loop runs.
  explicit TessalInputInstallerApp(QGuiApplication& application);

  /// Runs until the application terminates; returns its exit status.
  static int main();

 private:
  /// Moves the window so that it can be used on a screen without room for it.
  void keepReachable();

  std::future<void> fonts_ = readFonts();  // first, while the rest is made
  AppDelegate appDelegate_;
  std::shared_ptr<ContentView> contentView_ = ContentView::create();
  InstallerModel model_{contentView_};
  NamedWindow window_{model_.appDisplayName()};
};
