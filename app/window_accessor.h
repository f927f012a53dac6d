#pragma once

#include <QQuickItem>
#include <functional>

#include "platform/host_window.h"

/// An invisible item. It passes its window to a callback once.
class WindowAccessor : public QQuickItem {
 public:
  /// Gets the hosting window, or null.
  const std::function<void(platform::HostWindow*)> callback;

  /// Offers the hosting window to `callback` once, on a later turn of the main
  /// queue: null if the item is in no window by then, or is gone.
  WindowAccessor(QQuickItem* parent, std::function<void(platform::HostWindow*)> callback);
};
