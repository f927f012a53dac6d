#include "app/window_accessor.h"

#include <QPointer>
#include <QQuickWindow>
#include <utility>

#include "platform/main_queue.h"

WindowAccessor::WindowAccessor(QQuickItem* parent, std::function<void(platform::HostWindow*)> given)
    : QQuickItem(parent), callback(std::move(given)) {
  platform::asyncOnMain([item = QPointer<WindowAccessor>(this), callback = callback] {
    QQuickWindow* const window = item ? item->window() : nullptr;
    if (!window) return callback(nullptr);
    platform::HostWindow host(*window);
    callback(&host);
  });
}
