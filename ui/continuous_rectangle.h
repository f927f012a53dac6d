#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantList>

/// A rectangle with continuous corners: filled with one colour, or with a linear
/// gradient from the top-left to the bottom-right corner, and outlined inside
/// its edge.
class ContinuousRectangle : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double radius MEMBER radius_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// The colours at the top-left and at the bottom-right corner; `color` everywhere if empty.
  Q_PROPERTY(QVariantList gradient MEMBER gradient_ NOTIFY changed)
  Q_PROPERTY(QColor strokeColor MEMBER strokeColor_ NOTIFY changed)
  Q_PROPERTY(double strokeWidth MEMBER strokeWidth_ NOTIFY changed)

 public:
  explicit ContinuousRectangle(QQuickItem* parent = nullptr);
  void paint(QPainter* painter) override;

 signals:
  void changed();

 private:
  double radius_ = 0.0;
  QColor color_ = Qt::transparent;
  QVariantList gradient_;
  QColor strokeColor_ = Qt::transparent;
  double strokeWidth_ = 0.0;
};
