#include "ui/soft_shadow.h"

#include <QImage>
#include <QPainter>
#include <cmath>
#include <vector>

#include "ui/continuous_rectangle.h"

namespace {

// Beyond this many standard deviations a shadow is not seen.
constexpr double kShadowReach = 2.6;

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

}  // namespace

SoftShadow::SoftShadow(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &SoftShadow::changed, this, [this] { update(); });
}

double SoftShadow::extent() const {
  return std::ceil(blur_ * kShadowReach);
}

void SoftShadow::paint(QPainter* painter) {
  const double ratio = painter->deviceTransform().m11();  // device pixels a logical one
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
