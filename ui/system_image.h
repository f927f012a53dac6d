#pragma once

#include <QtQmlIntegration/qqmlintegration.h>

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QString>

#include "platform/pictures.h"

/// A picture of the platform as one of the toolkit.
QImage toQImage(const platform::Image& image);

/// A picture that the system has: the symbol of this name in one colour, or the
/// application's icon if the name is empty. It is painted on the main thread, where
/// pictures are made.
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

 private:
  QString symbol_;
  QColor color_ = Qt::black;
};
