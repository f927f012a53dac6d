#include "ui/system_image.h"

#include <QPainter>
#include <QQuickWindow>
#include <algorithm>
#include <cmath>

QImage toQImage(const platform::Image& image) {
  return QImage(image.pixels.data(), image.width, image.height, image.width * qsizetype{4},
                QImage::Format_RGBA8888_Premultiplied)
      .copy();
}

SystemImage::SystemImage(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &SystemImage::changed, this, &QQuickItem::polish);
}

double SystemImage::side() const {
  return std::min(width(), height());
}

void SystemImage::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
  QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
  polish();
}

void SystemImage::itemChange(ItemChange change, const ItemChangeData& data) {
  QQuickPaintedItem::itemChange(change, data);
  if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged) polish();
}

void SystemImage::updatePolish() {
  const double ratio = window() ? window()->effectiveDevicePixelRatio() : 1.0;
  const int pixels = static_cast<int>(std::lround(side() * ratio));
  image_ = QImage();
  if (symbol_.isEmpty()) {
    image_ = toQImage(platform::applicationIcon(pixels));
  } else if (const auto found = platform::systemSymbol(symbol_.toStdString(), pixels)) {
    image_ = toQImage(*found);
    QPainter tint(&image_);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(image_.rect(), color_);
  }
  update();
}

void SystemImage::paint(QPainter* painter) {
  if (image_.isNull()) return;
  painter->setRenderHint(QPainter::SmoothPixmapTransform);
  painter->drawImage(QRectF((width() - side()) / 2, (height() - side()) / 2, side(), side()),
                     image_);
}
