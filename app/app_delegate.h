#pragma once

class QGuiApplication;

/// Takes the decisions that the application leaves to its delegate.
class AppDelegate {
 public:
  /// Becomes the delegate of this application. Must live for as long as its main
  /// loop runs.
  void install(QGuiApplication& application) const;

  /// Whether the application quits when its last window is closed.
  bool applicationShouldTerminateAfterLastWindowClosed() const;
};
