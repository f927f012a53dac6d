#include "platform/main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <atomic>
#include <thread>
#include <utility>

namespace platform {
namespace {

/// A block on its way to the main thread, where the toolkit destroys the event.
struct BlockEvent final : QEvent {
  explicit BlockEvent(Block given) : QEvent(QEvent::User), block(std::move(given)) {}
  Block block;
};

// The toolkit orders a post and its delivery. This tells the thread sanitizer, which
// does not see into the toolkit.
std::atomic<int> posts = 0;

class Queue final : public QObject {
 public:
  bool event(QEvent* event) override {
    posts.load(std::memory_order_acquire);
    if (const auto* const posted = dynamic_cast<BlockEvent*>(event)) posted->block();
    return true;
  }
};

// Made on the main thread before there is another one, and never destroyed: a worker may
// put blocks here while the process ends.
Queue* const queue = std::make_unique<Queue>().release();
const std::thread::id mainThread = std::this_thread::get_id();

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
  posts.fetch_add(1, std::memory_order_release);
  // Not QMetaObject::invokeMethod: it copies the block, and of 200,000 blocks a tenth
  // were destroyed on the calling thread.
  QCoreApplication::postEvent(queue, std::make_unique<BlockEvent>(std::move(block)).release());
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

void assertMainThread() {
  if (std::this_thread::get_id() != mainThread) qFatal("not on the main thread");
}

}  // namespace platform
