#include "platform/pictures.h"

#include <QCoreApplication>
#include <QImage>
#include <QThread>
#include <cstdint>
#include <fstream>
#include <utility>
#include <vector>

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

/// A picture of the bundle whose pixels are there in this size; absent if they are not.
std::optional<Image> stored(const std::string& name, int side) {
  const auto file = bundleResource(name + "-" + std::to_string(side), "rgba");
  if (!file) return std::nullopt;
  std::ifstream stream(*file, std::ios::binary);
  Image image{side, side, std::vector<std::uint8_t>(std::size_t(side) * side * 4)};
  const auto size = static_cast<std::streamsize>(image.pixels.size());
  stream.read(reinterpret_cast<char*>(image.pixels.data()), size);
  return stream.gcount() == size ? std::optional(std::move(image)) : std::nullopt;
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
  if (auto icon = stored("AppIcon", side)) return *icon;
  QImage icon = drawn("AppIcon", side);
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
