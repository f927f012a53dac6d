// The operations on the hosting window that its one-time configuration needs.
// Main thread only.

#pragma once

#include <functional>
#include <memory>

class QWindow;

namespace platform {

/// In points, origin at a corner of the screen; only differences matter.
struct Rect {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;
  bool operator==(const Rect&) const = default;
};

struct Size {
  double width = 0.0;
  double height = 0.0;
  bool operator==(const Size&) const = default;
};

/// One window of the window system. It does not own the window and must not
/// outlive it.
class HostWindow {
 public:
  struct Impl;
  /// The window behind a toolkit window that has been created on the screen.
  explicit HostWindow(QWindow& window);
  explicit HostWindow(std::unique_ptr<Impl> impl);
  ~HostWindow();

  /// Pixels per point.
  double backingScaleFactor() const;
  /// Outer frame, title bar included.
  Rect frame() const;
  /// The outer frame of a window with this content rectangle.
  Rect frameRectForContentRect(const Rect& content) const;
  /// Moves and sizes the outer frame at once, and draws it.
  void setFrame(const Rect& frame);
  /// Makes this size the least and the largest that the content can have.
  void setFixedContentSize(const Size& size);
  /// Shows no title, and lets the content reach under the title bar where the
  /// system has it.
  void hideTitle();
  /// Takes the resizable and the miniaturizable bit away, and disables the
  /// buttons for miniaturising and zooming where there are such.
  void removeSizeControls();
  /// Asks `shouldClose` each time the user wants to close the window; false
  /// keeps it open. Replaces an earlier question, and stays with the window when
  /// this object is gone.
  void setShouldClose(std::function<bool()> shouldClose);

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
