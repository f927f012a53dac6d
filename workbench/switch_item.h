#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QQuickItem>
#include <QString>

/// An item that assistive tools know as a switch, and as disabled when it is. Of its
/// own items the toolkit does not tell them that. It draws nothing.
class SwitchItem : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(bool isOn READ isOn WRITE setOn NOTIFY isOnChanged)
  Q_PROPERTY(QString name MEMBER name NOTIFY wordsChanged)
  /// What else is to be said of it.
  Q_PROPERTY(QString description MEMBER description NOTIFY wordsChanged)

 public:
  using QQuickItem::QQuickItem;
  bool isOn() const { return isOn_; }
  void setOn(bool on);

  QString name, description;

  /// Makes the items known to assistive tools. Once.
  static void installAccessibility();

 signals:
  /// The user wants this state. The item does not take it by itself.
  void turned(bool on);
  void isOnChanged();
  void wordsChanged();

 private:
  bool isOn_ = false;
};
