#include "playback/sequence_player.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace brisklet {

namespace {

constexpr double tickMs = 1000.0 / 60;

}  // namespace

SequencePlayer::SequencePlayer(SequenceDocument document, ClockMs clock, QObject* parent)
    : QObject(parent), document_(std::move(document)), clock_(std::move(clock)) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, [this] {
    tick();
    if (startMs_) scheduleTick();
  });
}

double SequencePlayer::steadyClockMs() {
  // A wall clock may be set back or forward during a run; this one only counts.
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

void SequencePlayer::setElapsedMs(double elapsedMs) {
  if (elapsedMs_ == elapsedMs) return;
  elapsedMs_ = elapsedMs;
  Q_EMIT elapsedMsChanged();
}

void SequencePlayer::setDocument(SequenceDocument document) {
  const bool differs = !(document_ == document);
  document_ = std::move(document);
  if (differs) Q_EMIT documentChanged();
}

void SequencePlayer::setIsPlaying(bool isPlaying) {
  if (isPlaying_ == isPlaying) return;
  isPlaying_ = isPlaying;
  Q_EMIT isPlayingChanged();
}

void SequencePlayer::play() {
  stop();
  // An observer of either may stop the run at once.
  setIsPlaying(true);
  if (isPlaying_) setElapsedMs(0);
  if (!isPlaying_) return;
  startMs_ = clock_();
  runLengthMs_ = document_.durationMs();
  scheduleTick();
}

void SequencePlayer::stop() {
  timer_.stop();
  startMs_.reset();
  setIsPlaying(false);
}

void SequencePlayer::tick() {
  if (!startMs_) return;
  const double elapsedMs = clock_() - *startMs_;
  const double runLengthMs = runLengthMs_;
  setElapsedMs(elapsedMs);
  // An observer may have stopped the run, or started another one.
  if (!startMs_ || !(runLengthMs <= elapsedMs) || elapsedMs_ != elapsedMs) return;
  stop();
  setElapsedMs(finishedMs);
}

void SequencePlayer::scheduleTick() {
  // The timer counts whole milliseconds, so each tick is placed from the start of the run: rounding never
  // adds up.
  const double sinceStartMs = clock_() - *startMs_;
  const double nextTickMs = (std::floor(sinceStartMs / tickMs) + 1) * tickMs;
  timer_.start(static_cast<int>(std::ceil(nextTickMs - sinceStartMs)));
}

}  // namespace brisklet
