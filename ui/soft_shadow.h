#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QColor>
#include <QQuickPaintedItem>

/// The blurred shadow of a rectangle with continuous corners that lies `extent`
/// inside this item on each side.
class SoftShadow : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double radius MEMBER radius_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// Standard deviation of the blur.
  Q_PROPERTY(double blur MEMBER blur_ NOTIFY changed)
  Q_PROPERTY(double extent READ extent NOTIFY changed)

 public:
  explicit SoftShadow(QQuickItem* parent = nullptr);
  double extent() const;
  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  double radius_ = 0.0;
  QColor color_ = Qt::black;
  double blur_ = 0.0;
};
