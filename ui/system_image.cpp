#include "ui/system_image.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

QImage toQImage(const platform::Image& image) {
  return QImage(image.pixels.data(), image.width, image.height, image.width * qsizetype{4},
                QImage::Format_RGBA8888_Premultiplied)
      .copy();
}

SystemImage::SystemImage(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &SystemImage::changed, this, [this] { update(); });
}

void SystemImage::paint(QPainter* painter) {
  const double side = std::min(width(), height());
  const int pixels = static_cast<int>(std::lround(side * painter->deviceTransform().m11()));
  QImage image;
  if (symbol_.isEmpty()) {
    image = toQImage(platform::applicationIcon(pixels));
  } else if (const auto found = platform::systemSymbol(symbol_.toStdString(), pixels)) {
    image = toQImage(*found);
    QPainter tint(&image);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(image.rect(), color_);
  }
  painter->setRenderHint(QPainter::SmoothPixmapTransform);
  painter->drawImage(QRectF((width() - side) / 2, (height() - side) / 2, side, side), image);
}
