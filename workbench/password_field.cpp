#include "workbench/password_field.h"

#include "ui/item_interface.h"

namespace {

class PasswordFieldInterface : public ItemInterface, public QAccessibleTextInterface {
 public:
  explicit PasswordFieldInterface(QQuickItem* field) : ItemInterface(field) {}

  QAccessible::Role role() const override { return QAccessible::EditableText; }
  QString text(QAccessible::Text kind) const override {
    switch (kind) {
      case QAccessible::Name:
        return QStringLiteral("密码");
      case QAccessible::Value:
        return dots();
      default:
        return {};
    }
  }
  QAccessible::State state() const override {
    QAccessible::State state = ItemInterface::state();
    state.editable = true;
    state.passwordEdit = true;
    return state;
  }
  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::TextInterface ? static_cast<QAccessibleTextInterface*>(this)
                                              : ItemInterface::interface_cast(type);
  }

  QString text(int start, int end) const override { return dots().mid(start, end - start); }
  int characterCount() const override { return item().property("length").toInt(); }
  int cursorPosition() const override { return item().property("cursorPosition").toInt(); }
  void setCursorPosition(int position) override { item().setProperty("cursorPosition", position); }

  void selection(int index, int* start, int* end) const override {
    *start = index == 0 ? item().property("selectionStart").toInt() : 0;
    *end = index == 0 ? item().property("selectionEnd").toInt() : 0;
  }
  int selectionCount() const override {
    return item().property("selectionStart") == item().property("selectionEnd") ? 0 : 1;
  }
  void addSelection(int start, int end) override { setSelection(0, start, end); }
  void removeSelection(int /*index*/) override { QMetaObject::invokeMethod(&item(), "deselect"); }
  void setSelection(int /*index*/, int start, int end) override {
    QMetaObject::invokeMethod(&item(), "select", Q_ARG(int, start), Q_ARG(int, end));
  }

  QRect characterRect(int /*offset*/) const override { return rect(); }
  int offsetAtPoint(const QPoint& /*point*/) const override { return -1; }
  void scrollToSubstring(int /*start*/, int /*end*/) override {}
  QString attributes(int offset, int* start, int* end) const override {
    *start = *end = offset;
    return {};
  }

 private:
  QString dots() const { return QString(characterCount(), QChar(0x2022)); }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
  constexpr int kPlain = 0;  // TextInput.Normal
  if (className != QLatin1String("QQuickTextInput") || object->property("echoMode") == kPlain)
    return nullptr;
  auto* const field = qobject_cast<QQuickItem*>(object);
  return field ? new PasswordFieldInterface(field) : nullptr;  // the toolkit owns it
}

}  // namespace

void installPasswordFieldAccessibility() {
  QAccessible::installFactory(makeInterface);
}
