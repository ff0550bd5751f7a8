#pragma once

#include <future>

namespace brisklet {

/// Whether this process has one core to itself, as each worker of a run has: what others do side by side it
/// does one thing after the other. Set at its start, before there are threads.
inline bool hasOneCore = false;

/// Calls `work(begin, end)` for both halves of a range, on two cores if there are.
template <typename Work>
void inHalves(int begin, int end, const Work& work) {
  const int middle = (begin + end) / 2;
  auto upper = std::async(hasOneCore ? std::launch::deferred : std::launch::async, work, begin, middle);
  work(middle, end);
  upper.get();
}

}  // namespace brisklet
