#pragma once

#include <QSocketNotifier>
#include <memory>
#include <stop_token>

namespace brisklet {

/// Turns the first Ctrl-C (SIGINT), SIGTERM or SIGHUP into a stop request, through the event loop. A second
/// one ends the program at once.
class Interruption {
 public:
  explicit Interruption(std::stop_source stop);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

 private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace brisklet
