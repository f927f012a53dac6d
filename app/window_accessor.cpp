#include "app/window_accessor.h"

#include <QPointer>
#include <QQuickWindow>
#include <utility>

#include "platform/main_queue.h"

WindowAccessor::WindowAccessor(QQuickItem* parent,
                               std::function<void(platform::HostWindow*)> callback)
    : QQuickItem(parent) {
  platform::asyncOnMain([item = QPointer<WindowAccessor>(this), callback = std::move(callback)] {
    QQuickWindow* const window = item ? item->window() : nullptr;
    if (!window) return callback(nullptr);
    platform::HostWindow host(*window);
    callback(&host);
  });
}
