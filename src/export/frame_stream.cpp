#include "export/frame_stream.h"

#include "base/cores.h"
#include "export/video_exporter.h"

#include <pthread.h>

#include <algorithm>

namespace brisklet {

namespace {

double momentMs(qint64 frame) {
  return static_cast<double>(frame) / VideoExporter::framesPerSecond * 1000;
}

/// So that progress is told and a stop is heard now and then.
constexpr qint64 longestHold = 300;

}  // namespace

FrameStream::FrameStream(const SequenceDocument& document, const MovieStyle& style, LockScreenCache& cache)
    : pictures_(document, style, cache), frameCount_(VideoExporter::frameCount(document)) {
  if (!hasOneCore) thread_ = std::jthread([this] { paintAhead(); });
}

FrameStream::~FrameStream() {
  ahead_.abandon();
}

void FrameStream::paintAhead() {
  ::pthread_setname_np(::pthread_self(), "movie frames");
  try {
    while (!ahead_.isAbandoned()) {
      ahead_.waitForRoom();
      std::optional<HeldFrames> frames = paintNext();
      if (!frames) break;
      ahead_.push(std::move(*frames));
    }
  } catch (...) {
    failure_ = std::current_exception();
  }
  ahead_.close();
}

std::optional<HeldFrames> FrameStream::paintNext() {
  if (painted_ == frameCount_) return std::nullopt;
  HeldFrames frames{pictures_.at(momentMs(painted_)), painted_, 1, Stay::Long};
  if (pictures_.isMoving()) frames.stay = Stay::Brief;
  const qint64 most = pictures_.isMoving() ? 1 : std::min(frameCount_ - painted_, longestHold);
  while (frames.count < most && momentMs(painted_ + frames.count) < pictures_.nextLandingMs()) ++frames.count;
  painted_ += frames.count;
  return frames;
}

bool FrameStream::isReady() const {
  return hasOneCore || ahead_.isReady();
}

std::optional<HeldFrames> FrameStream::next() {
  if (hasOneCore) return paintNext();
  std::optional<HeldFrames> frames = ahead_.take();
  if (!frames && failure_) std::rethrow_exception(failure_);
  return frames;
}

}  // namespace brisklet
