// Pictures of the bundle, drawn with the toolkit.

#include "platform/pictures.h"

#include <QImage>

#include "platform/bundle.h"
#include "platform/main_queue.h"

namespace platform {

namespace {

/// A square picture of the bundle in this size; null if there is none.
QImage picture(const std::string& name, int side) {
  assertMainThread();
  const auto file = bundleResource(name, "png");
  const QImage found = file ? QImage(QString::fromStdString(file->string())) : QImage();
  return found.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

Image toImage(const QImage& picture) {
  // Its rows have no gaps: a pixel has four bytes.
  const QImage rgba = picture.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  return {rgba.width(), rgba.height(), {rgba.constBits(), rgba.constBits() + rgba.sizeInBytes()}};
}

}  // namespace

Image applicationIcon(int side) {
  return toImage(picture("AppIcon", side));
}

std::optional<Image> systemSymbol(const std::string& name, int side) {
  const QImage symbol = picture(name, side);
  return symbol.isNull() ? std::nullopt : std::optional(toImage(symbol));
}

}  // namespace platform
