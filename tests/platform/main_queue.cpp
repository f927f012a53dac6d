#include "platform/main_queue.h"

#include <algorithm>
#include <utility>

#include "tests/platform/test_platform.h"

namespace test {

struct Scheduled {
  double due;
  double interval;  // zero: once
  platform::Block block;
};

void Platform::drain() {
  while (!queue.empty()) {
    const platform::Block block = std::move(queue.front());
    queue.pop_front();
    block();
    if (afterBlock) afterBlock();
  }
}

void Platform::advance(double seconds) {
  constexpr double kRounding = 1e-9;
  const double end = elapsed + seconds;
  for (;;) {
    drain();
    const auto first =
        std::ranges::min_element(scheduled, {}, [](const auto& entry) { return entry->due; });
    if (first == scheduled.end() || (*first)->due > end + kRounding) break;
    const auto next = *first;
    elapsed = std::max(elapsed, next->due);
    next->due += next->interval;
    if (next->interval == 0) scheduled.erase(first);
    next->block();
    if (afterBlock) afterBlock();
  }
  elapsed = end;
}

void Platform::runWorker() {
  for (const auto& block : std::exchange(workerBlocks, {})) block();
  drain();
}

std::size_t Platform::liveTimers() const {
  return std::ranges::count_if(scheduled, [](const auto& entry) { return entry->interval > 0; });
}

}  // namespace test

namespace platform {

namespace {

std::shared_ptr<test::Scheduled> schedule(Seconds delay, Seconds interval, Block block) {
  return test::active->scheduled.emplace_back(std::make_shared<test::Scheduled>(
      test::Scheduled{test::active->elapsed + delay.count(), interval.count(), std::move(block)}));
}

/// A handle of either kind.
struct Handle : WorkItem, Timer {
  explicit Handle(std::shared_ptr<test::Scheduled> scheduled) : entry(std::move(scheduled)) {}
  ~Handle() override { Handle::cancel(); }
  void cancel() override {
    if (test::active) std::erase(test::active->scheduled, entry);
  }

  const std::shared_ptr<test::Scheduled> entry;
};

}  // namespace

void asyncOnMain(Block block) {
  test::active->queue.push_back(std::move(block));
}
void asyncOnMainAfter(Seconds delay, Block block) {
  schedule(delay, Seconds(0), std::move(block));
}
std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<Handle>(schedule(delay, Seconds(0), std::move(block)));
}
std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<Handle>(schedule(interval, interval, std::move(block)));
}
WallClock::time_point now() {
  return WallClock::time_point(
      std::chrono::round<WallClock::duration>(Seconds(1'000'000.0 + test::active->elapsed)));
}
void asyncOnWorker(Block block) {
  test::active->workerBlocks.push_back(std::move(block));
}

}  // namespace platform
