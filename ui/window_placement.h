// Where windows lie on the screen. Frames include the title bar.

#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

enum class Side { left, right };

/// Where a frame lies so that its title bar and as much else as possible is on the
/// screen: where it is, if all of it is there.
QPoint reachablePlace(const QRect& frame, const QRect& screen);

/// Where a window of this size hides nothing of another one: on this side of it, or
/// else on the other side, below or above. If the screen has no room for that, it
/// lies at this side's edge of the screen.
QPoint placeBeside(const QRect& other, const QSize& size, const QRect& screen, Side side);
