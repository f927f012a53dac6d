#include "platform/main_queue.h"

#include <QObject>
#include <QTimer>
#include <thread>
#include <utility>

namespace platform {
namespace {

// All blocks belong to it. Made on the main thread before there is another one, and
// never destroyed: a worker may put blocks here while the process ends.
QObject* const queue = std::make_unique<QObject>().release();

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
  QMetaObject::invokeMethod(queue, std::move(block), Qt::QueuedConnection);
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
