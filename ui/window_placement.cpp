#include "ui/window_placement.h"

#include <algorithm>

namespace {
constexpr int kGap = 12;
}  // namespace

QPoint reachablePlace(const QRect& frame, const QRect& screen) {
  // What is too large keeps its top and left edges.
  return {std::max(std::min(frame.x(), screen.right() + 1 - frame.width()), screen.x()),
          std::max(std::min(frame.y(), screen.bottom() + 1 - frame.height()), screen.y())};
}

QPoint placeBeside(const QRect& other, const QSize& size, const QRect& screen, Side side) {
  QRect frame(QPoint(), size);
  frame.moveCenter(other.center());
  QRect left = frame, right = frame, below = frame, above = frame;
  left.moveRight(other.left() - 1 - kGap);
  right.moveLeft(other.right() + 1 + kGap);
  below.moveTop(other.bottom() + 1 + kGap);
  above.moveBottom(other.top() - 1 - kGap);
  if (side == Side::left) std::swap(left, right);
  for (const QRect& each : {right, left, below, above}) {
    const QRect shown(reachablePlace(each, screen), size);
    if (!shown.intersects(other)) return shown.topLeft();
  }
  frame.moveLeft(side == Side::left ? screen.left() : screen.right() + 1 - size.width());
  return reachablePlace(frame, screen);
}
