#include "export/frame_stream.h"

#include "export/frame_pictures.h"
#include "export/video_exporter.h"

#include <pthread.h>

#include <utility>

namespace brisklet {

namespace {

double momentMs(qint64 frame) {
  return static_cast<double>(frame) / VideoExporter::framesPerSecond * 1000;
}

/// So that progress is told now and then.
constexpr qint64 longestHold = 300;

}  // namespace

FrameStream::FrameStream(SequenceDocument document, MovieStyle style, qint64 frameCount,
                         LockScreenCache& cache)
    : thread_([this, document = std::move(document), style, frameCount, &cache] {
        ::pthread_setname_np(::pthread_self(), "movie frames");
        try {
          paint(document, style, frameCount, cache);
        } catch (...) {
          failure_ = std::current_exception();
        }
        frames_.close();
      }) {}

FrameStream::~FrameStream() {
  frames_.abandon();
}

void FrameStream::push(const HeldFrames& frames) {
  if (frames.count == 0) return;
  frames_.waitForRoom();
  frames_.absorbOrPush(frames, [](const HeldFrames&, const HeldFrames&) { return false; });
}

void FrameStream::paint(const SequenceDocument& document, const MovieStyle& style, qint64 frameCount,
                        LockScreenCache& cache) {
  FramePictures pictures(document, style, cache);
  HeldFrames hold;  // the frames behind the one that showed its picture first
  for (qint64 frame = 0; frame < frameCount && !frames_.isAbandoned(); ++frame) {
    const QImage& picture = pictures.at(momentMs(frame));
    const bool isHeld = frame > 0 && picture.cacheKey() == hold.picture.cacheKey();
    if (isHeld && hold.count < longestHold) {
      ++hold.count;
      continue;
    }
    push(hold);
    if (isHeld) {
      hold = {picture, frame, 1, Stay::Long};
    } else {
      push({picture, frame, 1, pictures.isMoving() ? Stay::Brief : Stay::Long});
      hold = {picture, frame + 1, 0, Stay::Long};
    }
  }
  push(hold);
}

std::optional<HeldFrames> FrameStream::next() {
  std::optional<HeldFrames> frames = frames_.take();
  if (!frames && failure_) std::rethrow_exception(failure_);
  return frames;
}

}  // namespace brisklet
