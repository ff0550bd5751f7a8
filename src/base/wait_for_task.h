#pragma once

#include <QCoroTask>
#include <exception>
#include <utility>

namespace brisklet {

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
