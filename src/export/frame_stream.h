#pragma once

#include "lockscreen/lock_screen_view.h"
#include "model/movie_style.h"
#include "model/sequence_document.h"
#include "movie/bounded_queue.h"
#include "movie/stay.h"

#include <QImage>
#include <exception>
#include <optional>
#include <thread>

namespace brisklet {

/// A picture and the frames, one after the other, that show it.
struct HeldFrames {
  QImage picture;
  qint64 first = 0;
  qint64 count = 0;
  Stay stay = Stay::Long;
};

/// Paints the frames of a document's movie on a thread of its own, a few ahead of who takes them.
class FrameStream {
 public:
  /// `cache` is this stream's alone as long as it lives.
  FrameStream(SequenceDocument document, MovieStyle style, qint64 frameCount, LockScreenCache& cache);
  ~FrameStream();

  /// Whether `next` returns at once.
  [[nodiscard]] bool isReady() const { return frames_.isReady(); }

  /// The next frames, waiting for them; nothing after the last. The same picture may come in several pieces.
  /// Throws what painting threw.
  [[nodiscard]] std::optional<HeldFrames> next();

 private:
  void paint(const SequenceDocument& document, const MovieStyle& style, qint64 frameCount,
             LockScreenCache& cache);

  void push(const HeldFrames& frames);

  BoundedQueue<HeldFrames> frames_{1};
  std::exception_ptr failure_;  // written before the queue is closed, and read after
  std::jthread thread_;
};

}  // namespace brisklet
