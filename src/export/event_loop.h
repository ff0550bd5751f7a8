#pragma once

#include "base/error.h"

#include <QCoroTask>
#include <QCoroTimer>
#include <QElapsedTimer>
#include <chrono>
#include <exception>
#include <stop_token>
#include <utility>

namespace brisklet {

/// An export ended because it was asked to stop. It leaves nothing behind.
class ExportCancelled : public Error {
 public:
  ExportCancelled() : Error(QStringLiteral("The export was stopped.")) {}
};

/// Lets the event loop run between the steps of a task, and ends the task when it is asked to stop.
class EventLoopTurn {
 public:
  explicit EventLoopTurn(std::stop_token stop) : stop_(std::move(stop)) { sinceResumed_.start(); }

  /// The thread's other work has waited long enough.
  [[nodiscard]] bool isOver() const { return sinceResumed_.elapsed() >= 8; }

  /// Throws `ExportCancelled` once a stop is requested.
  QCoro::Task<> pause(std::chrono::milliseconds time = {}) {
    co_await QCoro::sleepFor(time);
    if (stop_.stop_requested()) throw ExportCancelled();
    sinceResumed_.start();
  }

 private:
  std::stop_token stop_;
  QElapsedTimer sinceResumed_;
};

/// Runs an event loop until the task has ended, and throws what it threw. `QCoro::waitFor` alone would wait
/// for ever for a task that throws.
inline void waitForTask(QCoro::Task<> task) {
  std::exception_ptr failure;
  const auto settled = [](QCoro::Task<> inner, std::exception_ptr& thrown) -> QCoro::Task<> {
    try {
      co_await inner;
    } catch (...) {
      thrown = std::current_exception();
    }
  };
  QCoro::waitFor(settled(std::move(task), failure));
  if (failure) std::rethrow_exception(failure);
}

}  // namespace brisklet
