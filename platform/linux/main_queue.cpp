#include "platform/main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace platform {
namespace {

/// The blocks that wait. The thread sanitizer sees this lock, and not the toolkit's own.
class Queue final : public QObject {
 public:
  void add(Block block) {
    {
      const std::lock_guard lock(mutex_);
      blocks_.push_back(std::move(block));
    }
    QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
  }

  /// One event came with each block; others are not sent to this object.
  bool event(QEvent* /*event*/) override {
    Block block;
    {
      const std::lock_guard lock(mutex_);
      if (blocks_.empty()) return false;
      block = std::move(blocks_.front());
      blocks_.pop_front();
    }
    block();
    return true;
  }

 private:
  std::mutex mutex_;
  std::deque<Block> blocks_;  // guarded by it
};

// All blocks belong to it. Made on the main thread before there is another one, and
// never destroyed: a worker may put blocks here while the process ends.
Queue* const queue = std::make_unique<Queue>().release();

std::chrono::milliseconds atLeast(Seconds delay) {
  return std::chrono::ceil<std::chrono::milliseconds>(delay);
}

/// A handle of either kind. Its block may destroy it: the toolkit keeps the block
/// until it has returned.
class TimerHandle final : public WorkItem, public Timer {
 public:
  TimerHandle(Seconds delay, bool isSingleShot, Block block) {
    timer_.setSingleShot(isSingleShot);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, std::move(block));
    timer_.start(atLeast(delay));
  }
  void cancel() override { timer_.stop(); }

 private:
  QTimer timer_;
};

}  // namespace

void asyncOnMain(Block block) {
  queue->add(std::move(block));
}

void asyncOnMainAfter(Seconds delay, Block block) {
  QTimer::singleShot(atLeast(delay), Qt::PreciseTimer, queue, std::move(block));
}

std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<TimerHandle>(delay, true, std::move(block));
}

std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<TimerHandle>(interval, false, std::move(block));
}

WallClock::time_point now() {
  return WallClock::now();
}

void asyncOnWorker(Block block) {
  std::thread(std::move(block)).detach();
}

}  // namespace platform
