#include "platform/main_queue.h"

#include <dispatch/dispatch.h>

#include <cstdint>
#include <utility>

#include "platform/macos/dispatch_source.h"

namespace platform {

namespace {

std::int64_t nanoseconds(Seconds duration) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count();
}

// The queue holds the only reference to a block. A closure for the queue would be
// copied first, and the last reference could die on the calling thread.
void* handOver(Block block) {
  return std::make_unique<Block>(std::move(block)).release();
}

void runOnce(void* context) {
  const std::unique_ptr<Block> block(static_cast<Block*>(context));
  (*block)();
}

// The owner holds the block; what the queue holds refers to it weakly. So the
// block neither runs nor stays in memory once the owner is gone, and it may
// destroy its owner while it runs.
Block unlessGone(const std::shared_ptr<Block>& block) {
  return [weak = std::weak_ptr(block)] {
    if (const auto alive = weak.lock()) (*alive)();
  };
}

class DelayedBlock final : public WorkItem {
 public:
  DelayedBlock(Seconds delay, Block block) : block_(std::make_shared<Block>(std::move(block))) {
    asyncOnMainAfter(delay, unlessGone(block_));
  }
  void cancel() override { block_.reset(); }

 private:
  std::shared_ptr<Block> block_;
};

class SourceTimer final : public Timer {
 public:
  SourceTimer(Seconds interval, Block block)
      : block_(std::make_shared<Block>(std::move(block))),
        // Strict: the system slows other timers down while the user is in System Settings.
        source_(makeMainQueueSource(DISPATCH_SOURCE_TYPE_TIMER, 0, DISPATCH_TIMER_STRICT,
                                    unlessGone(block_))) {
    const std::int64_t step = nanoseconds(interval);
    dispatch_source_set_timer(source_.get(), dispatch_time(DISPATCH_TIME_NOW, step),
                              static_cast<std::uint64_t>(step), 0);
    dispatch_resume(source_.get());
  }

 private:
  std::shared_ptr<Block> block_;
  DispatchSource source_;
};

}  // namespace

// The system's own services may fail there long after the call.
void assertMainThread() {
  dispatch_assert_queue(dispatch_get_main_queue());
}

void asyncOnMain(Block block) {
  dispatch_async_f(dispatch_get_main_queue(), handOver(std::move(block)), runOnce);
}

void asyncOnMainAfter(Seconds delay, Block block) {
  dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, nanoseconds(delay)), dispatch_get_main_queue(),
                   handOver(std::move(block)), runOnce);
}

std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<DelayedBlock>(delay, std::move(block));
}

std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<SourceTimer>(interval, std::move(block));
}

WallClock::time_point now() {
  return WallClock::now();
}

void asyncOnWorker(Block block) {
  dispatch_async_f(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0),
                   handOver(std::move(block)), runOnce);
}

}  // namespace platform
