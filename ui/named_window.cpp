#include "ui/named_window.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QGuiApplication>
#include <QQuickItem>

namespace {

/// What the toolkit tells about a window, with another name.
class WindowInterface : public QAccessibleObject {
 public:
  explicit WindowInterface(NamedWindow* window) : QAccessibleObject(window) {}

  QAccessible::Role role() const override { return QAccessible::Window; }
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? shown().name() : QString();
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.active = shown().isActive();
    state.invisible = !shown().isVisible();
    return state;
  }
  QRect rect() const override { return shown().geometry(); }
  QWindow* window() const override { return &shown(); }

  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(qApp);
  }
  QAccessibleInterface* child(int index) const override { return index == 0 ? content() : nullptr; }
  int childCount() const override { return content() ? 1 : 0; }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child == content() ? 0 : -1;
  }

 private:
  NamedWindow& shown() const { return *static_cast<NamedWindow*>(object()); }

  /// The root item, which says what is to be known of the others.
  QAccessibleInterface* content() const {
    return QAccessible::queryAccessibleInterface(shown().rootObject());
  }
};

QAccessibleInterface* makeWindowInterface(const QString& /*className*/, QObject* object) {
  auto* const window = qobject_cast<NamedWindow*>(object);
  return window ? new WindowInterface(window) : nullptr;  // the toolkit owns it
}

}  // namespace

void NamedWindow::installAccessibility() {
  QAccessible::installFactory(makeWindowInterface);
}
