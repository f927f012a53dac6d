#include "ui/painted_items.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "platform/pictures.h"

namespace {

// How far along its sides a continuous corner reaches, in radii.
constexpr double kCornerReach = 1.53;
// Beyond this many standard deviations a shadow is not seen.
constexpr double kShadowReach = 2.6;

/// Each corner is a quarter of a superellipse: its curvature begins with nothing
/// where it leaves the side. Half way round it meets the circle of the radius;
/// where the sides leave no room for more, it is that circle.
QPainterPath continuousPath(const QRectF& rect, double radius) {
  QPainterPath path;
  const double halfSide = std::min(rect.width(), rect.height()) / 2;
  const double circle = std::min(radius, halfSide);
  if (circle <= 0) {
    path.addRect(rect);
    return path;
  }
  const double reach = std::min(circle * kCornerReach, halfSide);
  const double apex = circle * (1 - std::numbers::sqrt2 / 2);
  const double exponent = -std::numbers::ln2 / std::log(1 - apex / reach);

  constexpr int kSteps = 24;
  std::array<QPointF, kSteps + 1> quarter;  // from the top side to the right side
  for (int step = 0; step <= kSteps; ++step) {
    const double angle = std::numbers::pi / 2 * step / kSteps;
    quarter[step] = {reach * std::pow(std::sin(angle), 2 / exponent),
                     reach * std::pow(std::cos(angle), 2 / exponent)};
  }
  quarter.front().setX(0);
  quarter.back().setY(0);

  QPolygonF outline;
  const QRectF centres = rect.adjusted(reach, reach, -reach, -reach);
  for (const QPointF& p : quarter) outline << centres.topRight() + QPointF(p.x(), -p.y());
  for (const QPointF& p : quarter) outline << centres.bottomRight() + QPointF(p.y(), p.x());
  for (const QPointF& p : quarter) outline << centres.bottomLeft() + QPointF(-p.x(), p.y());
  for (const QPointF& p : quarter) outline << centres.topLeft() + QPointF(-p.y(), -p.x());
  path.addPolygon(outline);
  path.closeSubpath();
  return path;
}

/// One pass of a box blur over `count` values, `stride` apart.
void boxBlur(std::uint8_t* values, int count, qsizetype stride, int radius,
             std::vector<std::uint8_t>& line) {
  line.resize(count);
  for (int i = 0; i < count; ++i) line[i] = values[i * stride];
  const auto at = [&](int i) { return i < 0 || i >= count ? 0 : static_cast<int>(line[i]); };
  const int size = 2 * radius + 1;
  int sum = 0;
  for (int i = -radius; i < radius; ++i) sum += at(i);
  for (int i = 0; i < count; ++i) {
    sum += at(i + radius);
    values[i * stride] = static_cast<std::uint8_t>((sum + size / 2) / size);
    sum -= at(i - radius);
  }
}

/// Three box blurs come close to a Gaussian of this standard deviation.
void blurAlpha(QImage& alpha, double deviation) {
  const int radius =
      static_cast<int>(std::lround((std::sqrt(4 * deviation * deviation + 1) - 1) / 2));
  std::vector<std::uint8_t> line;
  std::uint8_t* const bits = alpha.bits();
  const qsizetype rowBytes = alpha.bytesPerLine();
  for (int pass = 0; pass < 3; ++pass) {
    for (int y = 0; y < alpha.height(); ++y)
      boxBlur(bits + y * rowBytes, alpha.width(), 1, radius, line);
    for (int x = 0; x < alpha.width(); ++x)
      boxBlur(bits + x, alpha.height(), rowBytes, radius, line);
  }
}

/// Device pixels a logical one, where this painter draws.
double pixelRatio(const QPainter& painter) {
  return painter.deviceTransform().m11();
}

/// Repaints this item after each `changed` of its own.
template <class Item>
void repaintOnChange(Item* item) {
  item->setAntialiasing(true);
  QObject::connect(item, &Item::changed, item, [item] { item->update(); });
}

}  // namespace

QImage toQImage(const platform::Image& image) {
  return QImage(image.pixels.data(), image.width, image.height, image.width * qsizetype{4},
                QImage::Format_RGBA8888_Premultiplied)
      .copy();
}

ContinuousRectangle::ContinuousRectangle(QQuickItem* parent) : QQuickPaintedItem(parent) {
  repaintOnChange(this);
}

void ContinuousRectangle::paint(QPainter* painter) {
  const QRectF rect = boundingRect();
  const QPainterPath path = continuousPath(rect, radius_);
  if (gradientEnd_.isValid()) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
    gradient.setColorAt(0, color_);
    gradient.setColorAt(1, gradientEnd_);
    painter->fillPath(path, gradient);
  } else if (color_.alpha() > 0) {
    painter->fillPath(path, color_);
  }
  if (strokeWidth_ > 0 && strokeColor_.alpha() > 0) {
    const double inset = strokeWidth_ / 2;
    painter->strokePath(
        continuousPath(rect.adjusted(inset, inset, -inset, -inset), radius_ - inset),
        QPen(strokeColor_, strokeWidth_));
  }
}

SoftShadow::SoftShadow(QQuickItem* parent) : QQuickPaintedItem(parent) {
  repaintOnChange(this);
}

double SoftShadow::extent() const {
  return std::ceil(blur_ * kShadowReach);
}

void SoftShadow::paint(QPainter* painter) {
  const double ratio = pixelRatio(*painter);
  const QSize size = (boundingRect().size() * ratio).toSize();
  if (size.isEmpty()) return;
  QImage alpha(size, QImage::Format_Alpha8);
  alpha.fill(0);
  {
    QPainter shape(&alpha);
    shape.setRenderHint(QPainter::Antialiasing);
    shape.scale(ratio, ratio);
    const double inset = extent();
    shape.fillPath(continuousPath(boundingRect().adjusted(inset, inset, -inset, -inset), radius_),
                   Qt::black);
  }
  blurAlpha(alpha, blur_ * ratio);

  QImage shadow(size, QImage::Format_ARGB32_Premultiplied);
  shadow.fill(color_);
  {
    QPainter mask(&shadow);
    mask.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    mask.drawImage(0, 0, alpha);
  }
  painter->drawImage(boundingRect(), shadow);
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
