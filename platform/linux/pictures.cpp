#include "platform/pictures.h"

#include <QCoreApplication>
#include <QImage>
#include <QThread>

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

/// A square picture of the bundle, in this size; null if there is none.
QImage drawn(const std::string& name, int side) {
  const auto file = bundleResource(name, "png");
  const QImage picture = file ? QImage(QString::fromStdString(file->string())) : QImage();
  return picture.isNull()
             ? picture
             : picture.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

Image applicationIcon(int side) {
  assertMainThread();
  QImage icon = drawn("AppIcon-" + std::to_string(side), side);  // usual ones are there
  if (icon.isNull()) icon = drawn("AppIcon", side);
  if (icon.isNull()) {
    icon = QImage(side, side, QImage::Format_RGBA8888_Premultiplied);
    icon.fill(Qt::transparent);
  }
  return toImage(icon);
}

std::optional<Image> systemSymbol(const std::string& name, int side) {
  assertMainThread();
  const QImage symbol = drawn(name, side);
  return symbol.isNull() ? std::nullopt : std::optional(toImage(symbol));
}

}  // namespace platform
