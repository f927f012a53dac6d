#include "workbench/switch_item.h"

#include <QAccessible>

#include "ui/item_interface.h"

namespace {

class SwitchInterface : public ItemInterface {
 public:
  explicit SwitchInterface(SwitchItem* item) : ItemInterface(item) {}

  QAccessible::Role role() const override { return QAccessible::CheckBox; }
  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return toggle().name;
      case QAccessible::Description:
        return toggle().description;
      default:
        return {};
    }
  }
  QAccessible::State state() const override {
    QAccessible::State state = ItemInterface::state();
    state.checkable = true;
    state.checked = toggle().isOn();
    return state;
  }

  QStringList actionNames() const override {
    QStringList names = ItemInterface::actionNames();
    if (toggle().isEnabled()) names.prepend(toggleAction());
    return names;
  }
  void doAction(const QString& name) override {
    ItemInterface::doAction(name);
    if (name == toggleAction() && toggle().isEnabled()) emit toggle().turned(!toggle().isOn());
  }

 private:
  SwitchItem& toggle() const { return *static_cast<SwitchItem*>(object()); }
};

}  // namespace

void SwitchItem::setOn(bool on) {
  if (on == isOn_) return;
  isOn_ = on;
  emit isOnChanged();
  if (!QAccessible::isActive()) return;
  QAccessible::State changed;
  changed.checked = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

void SwitchItem::installAccessibility() {
  installInterface<SwitchInterface, SwitchItem>();
}
