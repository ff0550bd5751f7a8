#pragma once

#include "lockscreen/card_stack_animation.h"
#include "lockscreen/lock_screen_view.h"
#include "lockscreen/page.h"
#include "model/movie_style.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

#include <QImage>
#include <optional>
#include <vector>

namespace brisklet {

/// The picture of each moment of a document's movie. It depends on document, style and moment alone.
class FramePictures {
 public:
  /// `cache` may come from another movie, and saves what both have in common.
  FramePictures(const SequenceDocument& document, const MovieStyle& style, LockScreenCache& cache);

  [[nodiscard]] static QSize size(const MovieStyle& style);

  /// The picture at `timeMs`, which is not before the moment asked for last; positive infinity is the
  /// finished sequence. RGB32. A moment that shows the same as the one before has the same QImage, which is
  /// how a movie's writer knows that nothing changed.
  const QImage& at(double timeMs);

  /// Whether the cards go on moving after the moment asked for last.
  [[nodiscard]] bool isMoving() const { return !stands_; }
  /// When the next card lands. Until then a picture that does not move stays.
  [[nodiscard]] double nextLandingMs() const;

 private:
  /// Brings the cards to this moment; whether any has landed since.
  bool advance(double timeMs);

  const MovieStyle style_;
  SequencePlayer player_;
  LockScreenView view_;
  LockScreenCache& cache_;
  CardStackAnimation animation_;
  std::vector<double> landingsMs_;
  std::size_t landed_ = 0;
  bool stands_ = false;
  std::optional<Page> page_;
  QImage lockScreen_;
  QImage picture_;
};

}  // namespace brisklet
