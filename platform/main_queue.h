// The main queue, its delayed blocks and timers, the wall clock, and one
// background worker.

#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

using Block = std::function<void()>;
using Seconds = std::chrono::duration<double>;
using WallClock = std::chrono::system_clock;

/// Ends the program, with a reason, when it is called on another thread than the main one.
void assertMainThread();

/// Puts `block` at the end of the main queue and returns at once. Any thread.
/// Blocks run on the main thread, one at a time, in the order of the calls. Timers,
/// input and drawing get their turn between them, but not after every block. The
/// calling thread never destroys the block. One that is still queued when the
/// process ends is not run.
void asyncOnMain(Block block);

/// Does the same, but not before `delay` has passed. Main thread only.
void asyncOnMainAfter(Seconds delay, Block block);

/// A delayed block that can be taken back. The caller owns it: to destroy it is
/// to cancel it, also from inside its own block. Main thread only.
class WorkItem {
 public:
  virtual ~WorkItem() = default;
  /// The block will not run any more; nothing happens if it has run already.
  virtual void cancel() = 0;
};

/// Runs `block` once on the main queue, `delay` from now. Never null.
[[nodiscard]] std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block);

/// A repeating timer. The caller owns it: to destroy it is to stop it, also from
/// inside its own block. Main thread only.
class Timer {
 public:
  virtual ~Timer() = default;
};

/// Runs `block` on the main thread every `interval`, first one interval from
/// now. Never null.
[[nodiscard]] std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block);

/// The wall clock: it may jump when the user sets it.
WallClock::time_point now();

/// Runs `block` on a background worker of quality of service userInitiated and
/// returns at once. The process may end while the block runs.
void asyncOnWorker(Block block);

}  // namespace platform
