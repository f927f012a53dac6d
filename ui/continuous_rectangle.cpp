#include "ui/continuous_rectangle.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

// How far along its sides a continuous corner reaches, in radii.
constexpr double kCornerReach = 1.53;

// The outline of a rectangle with continuous corners. Each corner is a quarter of a
// superellipse: its curvature starts at zero where it leaves the side. Half way round
// it meets the circle of the radius; where the sides are too short for more, it is
// that circle.
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

}  // namespace

ContinuousRectangle::ContinuousRectangle(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &ContinuousRectangle::changed, this, [this] { update(); });
}

void ContinuousRectangle::paint(QPainter* painter) {
  const QRectF rect = boundingRect();
  const QPainterPath path = continuousPath(rect, radius_);
  if (!gradient_.isEmpty()) {
    QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
    gradient.setColorAt(0, gradient_.first().value<QColor>());
    gradient.setColorAt(1, gradient_.last().value<QColor>());
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
