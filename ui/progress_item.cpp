#include "ui/progress_item.h"

#include <QAccessible>
#include <QVariant>

#include "ui/item_interface.h"

namespace {

class ProgressInterface : public ItemInterface, public QAccessibleValueInterface {
 public:
  explicit ProgressInterface(ProgressItem* item) : ItemInterface(item) {}

  QAccessible::Role role() const override { return QAccessible::ProgressBar; }
  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return QStringLiteral("安装进度");
      case QAccessible::Value:
        return QStringLiteral("%1%").arg(static_cast<int>(progress().value() * 100));
      default:
        return {};
    }
  }
  QAccessible::State state() const override {
    QAccessible::State state = ItemInterface::state();
    state.readOnly = true;
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                               : ItemInterface::interface_cast(type);
  }
  QVariant currentValue() const override { return progress().value(); }
  void setCurrentValue(const QVariant& /*value*/) override {}
  QVariant maximumValue() const override { return 1.0; }
  QVariant minimumValue() const override { return 0.0; }
  QVariant minimumStepSize() const override { return 0.0; }

 private:
  const ProgressItem& progress() const { return *static_cast<const ProgressItem*>(object()); }
};

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
  installInterface<ProgressInterface, ProgressItem>();
}
