#pragma once

class QGuiApplication;

/// Decides for the application.
class AppDelegate {
 public:
  /// Becomes the delegate of this application, and must live as long as its loop runs.
  void install(QGuiApplication& application) const;

  /// Whether the application quits when its last window is closed.
  bool applicationShouldTerminateAfterLastWindowClosed() const;
};
