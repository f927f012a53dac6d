#pragma once

#include <QGuiApplication>
#include <QQuickView>
#include <memory>

#include "app/app_delegate.h"
#include "installer/content_view.h"
#include "ui/installer_model.h"

/// The application: one window, whose content is a fresh ContentView.
class TessalInputInstallerApp {
 public:
  /// Shows the window once the main loop runs.
  explicit TessalInputInstallerApp(QGuiApplication& application);

  /// Runs until the application terminates; returns its exit status.
  static int main();

  /// Must live as long as the main loop runs.
  AppDelegate appDelegate;

 private:
  std::shared_ptr<ContentView> contentView_ = ContentView::create();
  InstallerModel model_{contentView_};
  QQuickView window_;
};
