#include "platform/main_queue.h"

#include <algorithm>
#include <utility>

#include "tests/platform/test_platform.h"

namespace test {

struct Scheduled {
  double due;
  double interval;  // negative: once
  platform::Block block;
};

void Platform::runNextBlock() {
  {
    const platform::Block block = std::move(queue.front());
    queue.pop_front();
    block();
  }
  if (afterBlock) afterBlock();
}

void Platform::drain() {
  while (!queue.empty()) runNextBlock();
}

void Platform::advance(double seconds) {
  constexpr double kRounding = 1e-9;
  const double end = elapsed + seconds;
  for (;;) {
    drain();
    std::shared_ptr<Scheduled> next;
    std::erase_if(scheduled, [](const auto& entry) { return entry.expired(); });
    for (const auto& weak : scheduled)
      if (auto entry = weak.lock(); entry && (!next || entry->due < next->due)) next = entry;
    if (!next || next->due > end + kRounding) break;
    elapsed = std::max(elapsed, next->due);
    if (next->interval >= 0)
      next->due += next->interval;
    else
      std::erase_if(scheduled, [&](const auto& entry) { return entry.lock() == next; });
    std::erase(unowned, next);
    const platform::Block block = next->block;
    block();
    if (afterBlock) afterBlock();
  }
  elapsed = end;
}

void Platform::runWorker() {
  for (const auto& block : std::exchange(workerBlocks, {})) block();
}

std::size_t Platform::liveTimers() const {
  return std::count_if(scheduled.begin(), scheduled.end(), [](const auto& entry) {
    const auto live = entry.lock();
    return live && live->interval >= 0;
  });
}

}  // namespace test

namespace platform {

namespace {

using test::Scheduled;

std::shared_ptr<Scheduled> schedule(Seconds delay, bool repeats, Block block) {
  auto entry = std::make_shared<Scheduled>(Scheduled{
      test::active->elapsed + delay.count(), repeats ? delay.count() : -1.0, std::move(block)});
  test::active->scheduled.push_back(entry);
  return entry;
}

/// A handle of either kind; without it the entry expires.
class Handle : public WorkItem, public Timer {
 public:
  explicit Handle(std::shared_ptr<Scheduled> entry) : entry_(std::move(entry)) {}
  void cancel() override { entry_.reset(); }

 private:
  std::shared_ptr<Scheduled> entry_;
};

}  // namespace

void asyncOnMain(Block block) {
  test::active->queue.push_back(std::move(block));
}
void asyncOnMainAfter(Seconds delay, Block block) {
  test::active->unowned.push_back(schedule(delay, false, std::move(block)));
}
std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<Handle>(schedule(delay, false, std::move(block)));
}
std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<Handle>(schedule(interval, true, std::move(block)));
}
WallClock::time_point now() {
  return WallClock::time_point(
      std::chrono::round<WallClock::duration>(Seconds(1'000'000.0 + test::active->elapsed)));
}
void asyncOnWorker(Block block) {
  test::active->workerBlocks.push_back(std::move(block));
}

}  // namespace platform
