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

bool absorbHold(HeldFrames& last, const HeldFrames& next) {
  const bool isHeld = last.picture.cacheKey() == next.picture.cacheKey();
  if (isHeld) last.count += next.count;
  return isHeld;
}

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

void FrameStream::paint(const SequenceDocument& document, const MovieStyle& style, qint64 frameCount,
                        LockScreenCache& cache) {
  FramePictures pictures(document, style, cache);
  for (qint64 frame = 0; frame < frameCount && !frames_.isAbandoned(); ++frame) {
    HeldFrames next{pictures.at(momentMs(frame)), frame, 1};
    frames_.waitForRoom();
    frames_.absorbOrPush(std::move(next), absorbHold);
  }
}

std::optional<HeldFrames> FrameStream::next() {
  std::optional<HeldFrames> frames = frames_.take();
  if (!frames && failure_) std::rethrow_exception(failure_);
  return frames;
}

}  // namespace brisklet
