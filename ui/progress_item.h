#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QQuickItem>

/// An item that tells assistive tools the progress of something. The toolkit has
/// no item for that. It draws nothing.
class ProgressItem : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  /// 0.0 to 1.0.
  Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)

 public:
  using QQuickItem::QQuickItem;
  double value() const { return value_; }
  void setValue(double value);

  /// Makes the items known to assistive tools. Once.
  static void installAccessibility();

 signals:
  void valueChanged();

 private:
  double value_ = 0.0;
};
