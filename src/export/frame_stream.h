#pragma once

#include "export/frame_pictures.h"
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
  FrameStream(const SequenceDocument& document, const MovieStyle& style, LockScreenCache& cache);
  ~FrameStream();

  /// Whether `next` returns at once.
  [[nodiscard]] bool isReady() const;

  /// The next frames, waiting for them; nothing after the last. The same picture may come in several pieces.
  /// Throws what painting threw.
  [[nodiscard]] std::optional<HeldFrames> next();

 private:
  [[nodiscard]] std::optional<HeldFrames> paintNext();
  void paintAhead();

  FramePictures pictures_;
  const qint64 frameCount_;
  qint64 painted_ = 0;
  BoundedQueue<HeldFrames> ahead_{1};
  std::exception_ptr failure_;  // written before the queue is closed, and read after
  std::jthread thread_;
};

}  // namespace brisklet
