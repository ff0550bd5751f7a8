#include "render/interruption.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <utility>

namespace brisklet {

namespace {

constexpr std::array signalsHeard{SIGINT, SIGTERM, SIGHUP};

// A signal handler may do next to nothing, so it writes a byte that the event loop reads.
int pipeEnds[2] = {-1, -1};

extern "C" void writeByte(int signalNumber) {
  std::signal(signalNumber, SIG_DFL);
  const char byte = 0;
  [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
}

}  // namespace

Interruption::Interruption(std::stop_source stop) {
  if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, stop = std::move(stop)]() mutable {
    notifier_->setEnabled(false);
    stop.request_stop();
  });
  for (const int number : signalsHeard) {
    // What was ignored from outside, as nohup does, stays ignored.
    if (std::signal(number, writeByte) == SIG_IGN) std::signal(number, SIG_IGN);
  }
}

Interruption::~Interruption() {
  if (!notifier_) return;
  for (const int number : signalsHeard) std::signal(number, SIG_DFL);
  notifier_.reset();
  close(pipeEnds[0]);
  close(pipeEnds[1]);
}

}  // namespace brisklet
