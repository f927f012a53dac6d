#include "ui/item_interface.h"

#include <QQuickWindow>

QAccessible::State ItemInterface::state() const {
  QAccessible::State state;
  state.invisible = !item().isVisible();
  state.disabled = !item().isEnabled();
  state.focusable = item().activeFocusOnTab();
  state.focused = item().hasActiveFocus();
  return state;
}

QRect ItemInterface::rect() const {
  const QRectF inScene = item().mapRectToScene(item().boundingRect());
  return window() ? inScene.toRect().translated(window()->position()) : QRect();
}

QWindow* ItemInterface::window() const {
  return item().window();
}

QAccessibleInterface* ItemInterface::parent() const {
  for (QQuickItem* above = item().parentItem(); above; above = above->parentItem())
    if (auto* found = QAccessible::queryAccessibleInterface(above)) return found;
  return QAccessible::queryAccessibleInterface(item().window());
}

void* ItemInterface::interface_cast(QAccessible::InterfaceType type) {
  return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                              : nullptr;
}

QStringList ItemInterface::actionNames() const {
  return state().focusable ? QStringList{setFocusAction()} : QStringList();
}

void ItemInterface::doAction(const QString& name) {
  if (name == setFocusAction()) item().forceActiveFocus();
}
