// One observable field of the view's state.

#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "platform/handler_list.h"
#include "platform/main_queue.h"

/// How a change is to be shown: linearly, over this time.
struct LinearAnimation {
  platform::Seconds duration;
  bool operator==(const LinearAnimation&) const = default;
};

/// A value that tells its observers of every change. Only the main thread reads
/// or writes it. Observers are called on the next turn of the main queue, when the
/// operation that wrote has run to its end: they never see a state between two
/// writes of one operation. Several writes within a turn reach them as one, with
/// the last value and the animation of the last write.
template <class T>
class State {
 public:
  using Observers = platform::HandlerList<const T&, std::optional<LinearAnimation>>;

  State() : State(T{}) {}
  explicit State(T initial) : cell_(std::make_shared<Cell>(std::move(initial))) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  const T& get() const { return cell_->value; }
  operator const T&() const { return cell_->value; }
  const T* operator->() const { return &cell_->value; }

  State& operator=(T value) {
    set(std::move(value));
    return *this;
  }
  void set(T value, std::optional<LinearAnimation> animation = std::nullopt) {
    // The old value is destroyed when this returns. Its destructor may read the new one.
    std::swap(cell_->value, value);
    changed(animation);
  }
  /// Changes the value in place.
  template <class Change>
  void update(Change&& change) {
    std::forward<Change>(change)(cell_->value);
    changed(std::nullopt);
  }

  /// Calls `observer` after each change from now on.
  [[nodiscard]] platform::Observation observe(typename Observers::Handler observer) {
    return cell_->observers.add(std::move(observer));
  }

 private:
  struct Cell {
    explicit Cell(T initial) : value(std::move(initial)) {}
    T value;
    std::optional<LinearAnimation> animation;
    bool pending = false;
    Observers observers;
  };

  void changed(std::optional<LinearAnimation> animation) {
    cell_->animation = animation;
    if (cell_->pending) return;
    cell_->pending = true;
    platform::asyncOnMain([weak = std::weak_ptr(cell_)] {
      const auto cell = weak.lock();
      if (!cell) return;
      cell->pending = false;
      cell->observers.call(cell->value, cell->animation);
    });
  }

  std::shared_ptr<Cell> cell_;
};
