#include "platform/main_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>
#include <cmath>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace platform {
namespace {

/// One block an event, so that input, drawing and timers get their turn between
/// two blocks however many are waiting.
class MainQueue : public QObject {
 public:
  static MainQueue& instance() {
    static MainQueue queue;
    return queue;
  }

  /// The end of a block may call push(), so the queue is closed before.
  ~MainQueue() override {
    std::deque<Block> unrun;
    {
      const std::lock_guard lock(mutex_);
      isClosed_ = true;
      unrun.swap(blocks_);
    }
  }

  void push(Block block) {
    const std::lock_guard lock(mutex_);
    if (isClosed_) return;
    blocks_.push_back(std::move(block));
    if (blocks_.size() == 1) postTurn();
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::User) return QObject::event(event);
    Block block;
    {
      const std::lock_guard lock(mutex_);
      block = std::move(blocks_.front());
      blocks_.pop_front();
      if (!blocks_.empty()) postTurn();
    }
    block();
    return true;
  }

 private:
  void postTurn() {
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the event queue owns it
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  }

  std::mutex mutex_;
  std::deque<Block> blocks_;
  bool isClosed_ = false;
};

// Made on the main thread, before any other thread can ask for it.
[[maybe_unused]] const MainQueue& mainThreadQueue = MainQueue::instance();

std::chrono::milliseconds atLeast(Seconds delay) {
  return std::chrono::ceil<std::chrono::milliseconds>(delay);
}

class QtWorkItem : public WorkItem {
 public:
  QtWorkItem(Seconds delay, Block block) : block_(std::move(block)) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      const Block running = std::move(block_);  // outlives this item, which it may destroy
      running();
    });
    timer_.start(atLeast(delay));
  }
  void cancel() override { timer_.stop(); }

 private:
  QTimer timer_;
  Block block_;
};

class QtTimer : public Timer {
 public:
  QtTimer(Seconds interval, Block block) : block_(std::make_shared<Block>(std::move(block))) {
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      const auto running = block_;  // outlives this timer, which it may destroy
      (*running)();
    });
    timer_.start(atLeast(interval));
  }

 private:
  QTimer timer_;
  std::shared_ptr<Block> block_;
};

}  // namespace

void asyncOnMain(Block block) {
  MainQueue::instance().push(std::move(block));
}

void asyncOnMainAfter(Seconds delay, Block block) {
  QTimer::singleShot(atLeast(delay), Qt::PreciseTimer, &MainQueue::instance(), std::move(block));
}

std::unique_ptr<WorkItem> scheduleWorkItem(Seconds delay, Block block) {
  return std::make_unique<QtWorkItem>(delay, std::move(block));
}

std::unique_ptr<Timer> scheduleTimer(Seconds interval, Block block) {
  return std::make_unique<QtTimer>(interval, std::move(block));
}

WallClock::time_point now() {
  return WallClock::now();
}

std::optional<std::string> asyncOnWorker(Block block) {
  try {
    std::thread(std::move(block)).detach();
    return std::nullopt;
  } catch (const std::system_error& error) {
    return "no thread: " + error.code().message();
  }
}

}  // namespace platform
