// The operations on the hosting window that its one-time configuration needs.
// Main thread only.

#pragma once

#include <functional>
#include <memory>
#include <string>

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

/// Bits of the style mask (NSWindowStyleMask…).
enum WindowStyle : unsigned {
  kTitled = 1U,
  kClosable = 2U,
  kMiniaturizable = 4U,
  kResizable = 8U,
  kFullSizeContentView = 1U << 15U,
};

enum class WindowButton { miniaturize = 1, zoom = 2 };

/// One window of the window system. It does not own the window and must not
/// outlive it.
class HostWindow {
 public:
  struct Impl;
  /// The window behind a toolkit window that has been created on the screen.
  explicit HostWindow(QWindow& window);
  explicit HostWindow(std::unique_ptr<Impl> impl);
  ~HostWindow();
  HostWindow(HostWindow&&) noexcept;

  /// Pixels a point.
  double backingScaleFactor() const;
  /// Outer frame, title bar included.
  Rect frame() const;
  /// The outer frame of a window with this content rectangle.
  Rect frameRectForContentRect(const Rect& content) const;
  void setFrame(const Rect& frame, bool display, bool animate);
  void setContentMinSize(const Size& size);
  void setContentMaxSize(const Size& size);
  void setTitleHidden();
  void setTitle(const std::string& title);
  void setTitlebarAppearsTransparent(bool transparent);
  /// The bits of WindowStyle, and others of the system's own.
  unsigned styleMask() const;
  void setStyleMask(unsigned mask);
  /// No effect if the window lacks the button.
  void setButtonEnabled(WindowButton button, bool enabled);
  /// Asks `shouldClose` each time the user wants to close the window; false
  /// keeps it open. Replaces an earlier question, and stays with the window when
  /// this object is gone.
  void setShouldClose(std::function<bool()> shouldClose);

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
