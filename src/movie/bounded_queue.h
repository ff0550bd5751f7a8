#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace brisklet {

/// Hands values from one thread to another, in order. Who fills it asks for room or waits for it.
template <typename T>
class BoundedQueue {
 public:
  explicit BoundedQueue(size_t capacity) : capacity_(capacity) {}

  /// An abandoned queue always has room, so that nobody waits for it.
  [[nodiscard]] bool hasRoom() const {
    const std::lock_guard lock(mutex_);
    return hasRoomLocked();
  }

  void waitForRoom() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return hasRoomLocked(); });
  }

  /// Never waits.
  void push(T value) {
    const std::lock_guard lock(mutex_);
    if (abandoned_) return;
    values_.push_back(std::move(value));
    changed_.notify_all();
  }

  /// Whether `take` returns at once.
  [[nodiscard]] bool isReady() const {
    const std::lock_guard lock(mutex_);
    return !values_.empty() || closed_ || abandoned_;
  }

  /// The next value, waiting for it; nothing once all have been taken from a closed queue, or after
  /// `abandon`.
  [[nodiscard]] std::optional<T> take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !values_.empty() || closed_ || abandoned_; });
    if (values_.empty()) return std::nullopt;
    T value = std::move(values_.front());
    values_.pop_front();
    changed_.notify_all();
    return value;
  }

  /// Nothing more is to come.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }

  /// Drops what is in it and whatever comes.
  void abandon() {
    const std::lock_guard lock(mutex_);
    abandoned_ = true;
    values_.clear();
    changed_.notify_all();
  }

  [[nodiscard]] bool isAbandoned() const {
    const std::lock_guard lock(mutex_);
    return abandoned_;
  }

 private:
  [[nodiscard]] bool hasRoomLocked() const { return abandoned_ || values_.size() < capacity_; }

  const size_t capacity_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<T> values_;
  bool closed_ = false;
  bool abandoned_ = false;
};

}  // namespace brisklet
