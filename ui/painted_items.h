// What the screens draw that QML has no element for. Painted, not shaded, so
// that they need no GPU.

#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QString>
#include <QtQmlIntegration>

#include "platform/pictures.h"

/// A picture of the platform as one of the toolkit.
QImage toQImage(const platform::Image& image);

/// A rectangle with continuous corners: filled with one colour, or with a linear
/// gradient from the top-left to the bottom-right corner, and outlined inside
/// its edge.
class ContinuousRectangle : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(double radius MEMBER radius_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)
  /// The colour at the bottom-right corner; `color` everywhere if not valid.
  Q_PROPERTY(QColor gradientEnd MEMBER gradientEnd_ NOTIFY changed)
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
  QColor gradientEnd_;
  QColor strokeColor_ = Qt::transparent;
  double strokeWidth_ = 0.0;
};

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

/// A picture of the system's: the symbol of this name in one colour, or the
/// application's icon if there is no name. Another thread may paint it, so it gets
/// the picture before, on the main thread.
class SystemImage : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QString symbol MEMBER symbol_ NOTIFY changed)
  Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)

 public:
  explicit SystemImage(QQuickItem* parent = nullptr);
  void paint(QPainter* painter) override;

 signals:
  void changed();

 protected:
  void updatePolish() override;
  void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
  void itemChange(ItemChange change, const ItemChangeData& data) override;

 private:
  double side() const;

  QString symbol_;
  QColor color_ = Qt::black;
  QImage image_;
};
