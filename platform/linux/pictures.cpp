#include "platform/pictures.h"

#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QThread>
#include <algorithm>

#include "platform/bundle.h"

namespace platform {

namespace {

// As strict as macOS, whose pictures belong to the main thread.
void assertMainThread() {
  const auto* application = QCoreApplication::instance();
  if (application && application->thread() != QThread::currentThread())
    qFatal("pictures are made on the main thread only");
}

Image toImage(const QImage& picture) {
  const QImage rgba = picture.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  Image image{rgba.width(), rgba.height(), {}};
  image.pixels.reserve(static_cast<std::size_t>(rgba.width()) * rgba.height() * 4);
  for (int y = 0; y < rgba.height(); ++y) {
    const auto* row = rgba.constScanLine(y);
    image.pixels.insert(image.pixels.end(), row,
                        row + static_cast<std::ptrdiff_t>(rgba.width()) * 4);
  }
  return image;
}

// The symbols, on a square of 100 by 100.

QPainterPath gear() {
  constexpr int kTeeth = 8;
  constexpr QPointF kCentre{50, 50};
  QPainterPath body;
  body.addEllipse(kCentre, 35, 35);
  QPainterPath tooth;
  tooth.moveTo(40, 20);
  tooth.lineTo(42.5, 7);
  tooth.quadTo(43.2, 3, 47, 3);
  tooth.lineTo(53, 3);
  tooth.quadTo(56.8, 3, 57.5, 7);
  tooth.lineTo(60, 20);
  tooth.closeSubpath();
  for (int i = 0; i < kTeeth; ++i) {
    QTransform turn;
    turn.translate(kCentre.x(), kCentre.y());
    turn.rotate(360.0 / kTeeth * i);
    turn.translate(-kCentre.x(), -kCentre.y());
    body = body.united(turn.map(tooth));
  }
  QPainterPath hole;
  hole.addEllipse(kCentre, 14, 14);
  return body.subtracted(hole);
}

QPainterPath keyboard() {
  constexpr double kStroke = 6.5;
  constexpr double kKey = 7.5;
  QPainterPath path;
  path.setFillRule(Qt::OddEvenFill);
  const QRectF outer(1, 20, 98, 60);
  path.addRoundedRect(outer, 13, 13);
  path.addRoundedRect(outer.adjusted(kStroke, kStroke, -kStroke, -kStroke), 13 - kStroke,
                      13 - kStroke);
  const auto key = [&](double x, double y, double width) {
    path.addRoundedRect(QRectF(x - width / 2, y - kKey / 2, width, kKey), 1.8, 1.8);
  };
  for (int i = 0; i < 6; ++i) key(17.5 + 13 * i, 37, kKey);
  for (int i = 0; i < 6; ++i) key(17.5 + 13 * i, 50, kKey);
  key(17.5, 63, kKey);
  key(50, 63, 38);
  key(82.5, 63, kKey);
  return path;
}

}  // namespace

Image applicationIcon(int side) {
  assertMainThread();
  const auto file = bundleResource("AppIcon", "png");
  QImage icon;
  if (file) icon.load(QString::fromStdString(file->string()));
  if (icon.isNull()) {
    icon = QImage(1, 1, QImage::Format_RGBA8888_Premultiplied);
    icon.fill(Qt::transparent);
  }
  return toImage(icon.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

std::optional<Image> systemSymbol(const std::string& name, int side) {
  assertMainThread();
  QPainterPath path;
  if (name == "gearshape.fill")
    path = gear();
  else if (name == "keyboard")
    path = keyboard();
  else
    return std::nullopt;
  QImage picture(side, side, QImage::Format_RGBA8888_Premultiplied);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(side / 100.0, side / 100.0);
  painter.fillPath(path, Qt::black);
  painter.end();
  return toImage(picture);
}

}  // namespace platform
