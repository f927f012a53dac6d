// What assistive tools are told of an item that the toolkit's own words do not fit.

#pragma once

#include <QAccessibleObject>
#include <QLatin1String>
#include <QQuickItem>

/// An item without items of its own. Where it lies; what it is, the class below says.
/// Its QML still needs an Accessible.role: without one the toolkit does not list it.
class ItemInterface : public QAccessibleObject, public QAccessibleActionInterface {
 public:
  explicit ItemInterface(QQuickItem* item) : QAccessibleObject(item) {}

  QAccessible::State state() const override;
  QRect rect() const override;
  QWindow* window() const override;
  QAccessibleInterface* parent() const override;
  QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

  void* interface_cast(QAccessible::InterfaceType type) override;
  /// What Tab reaches can be given the focus.
  QStringList actionNames() const override;
  void doAction(const QString& name) override;
  QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

 protected:
  QQuickItem& item() const { return *static_cast<QQuickItem*>(object()); }
};

/// Has assistive tools told of each object of this class by this interface.
template <class Interface, class Object>
void installInterface() {
  QAccessible::installFactory(
      [](const QString& className, QObject* object) -> QAccessibleInterface* {
        if (className != QLatin1String(Object::staticMetaObject.className())) return nullptr;
        auto* const described = qobject_cast<Object*>(object);
        return described ? new Interface(described) : nullptr;  // the toolkit owns it
      });
}
