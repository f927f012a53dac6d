#include "ui/progress_item.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QLatin1String>
#include <QQuickWindow>
#include <QVariant>

namespace {

class ProgressInterface : public QAccessibleObject, public QAccessibleValueInterface {
 public:
  explicit ProgressInterface(ProgressItem* item) : QAccessibleObject(item) {}

  QAccessible::Role role() const override { return QAccessible::ProgressBar; }
  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return QStringLiteral("安装进度");
      case QAccessible::Value:
        return QStringLiteral("%1%").arg(static_cast<int>(item().value() * 100));
      default:
        return {};
    }
  }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.readOnly = true;
    state.invisible = !item().isVisible();
    return state;
  }
  QRect rect() const override {
    const QRectF inScene = item().mapRectToScene(item().boundingRect());
    return item().window() ? inScene.toRect().translated(item().window()->position()) : QRect();
  }
  QWindow* window() const override { return item().window(); }

  QAccessibleInterface* parent() const override {
    for (QQuickItem* above = item().parentItem(); above; above = above->parentItem())
      if (auto* found = QAccessible::queryAccessibleInterface(above)) return found;
    return QAccessible::queryAccessibleInterface(item().window());
  }
  QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                               : nullptr;
  }
  QVariant currentValue() const override { return item().value(); }
  void setCurrentValue(const QVariant& /*value*/) override {}
  QVariant maximumValue() const override { return 1.0; }
  QVariant minimumValue() const override { return 0.0; }
  QVariant minimumStepSize() const override { return 0.0; }

 private:
  const ProgressItem& item() const { return *static_cast<const ProgressItem*>(object()); }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  if (className != QLatin1String("ProgressItem")) return nullptr;
  auto* const item = qobject_cast<ProgressItem*>(object);
  return item ? new ProgressInterface(item) : nullptr;  // the toolkit owns it
}

}  // namespace

void ProgressItem::setValue(double value) {
  if (value == value_) return;
  value_ = value;
  emit valueChanged();
  if (!QAccessible::isActive()) return;
  QAccessibleValueChangeEvent event(this, value);
  QAccessible::updateAccessibility(&event);
}

void ProgressItem::installAccessibility() {
  QAccessible::installFactory(makeInterface);
}
