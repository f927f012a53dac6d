#pragma once

#include <QAnimationDriver>

/// While it exists, it alone moves the animations.
class AnimationClock : public QAnimationDriver {
 public:
  AnimationClock() { install(); }
  ~AnimationClock() override { uninstall(); }
  void moveTo(double milliseconds) {
    now_ = static_cast<qint64>(milliseconds);
    advanceAnimation();
  }
  qint64 elapsed() const override { return now_; }

 private:
  qint64 now_ = 0;
};
