#pragma once

#include <QImage>
#include <QList>
#include <QPainter>
#include <QSize>

#include "lockscreen/capture_mode.h"
#include "lockscreen/card_stack_animation.h"
#include "lockscreen/lock_screen_scenery.h"
#include "lockscreen/notification_card.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

namespace brisklet {

/// What a host keeps of the lock screens that it painted: one picture and its parts, at the scale, in the
/// mode and of the document last painted. Painting again what has not changed costs next to nothing.
class LockScreenCache {
 public:
  LockScreenCache() = default;
  LockScreenCache(const LockScreenCache&) = delete;
  LockScreenCache& operator=(const LockScreenCache&) = delete;

 private:
  friend struct LockScreenView;

  /// A card as it stands in the picture, in pixels.
  struct DrawnCard {
    QImage content;
    double top;
    double opacity;

    friend bool operator==(const DrawnCard& a, const DrawnCard& b) {
      return a.content.cacheKey() == b.content.cacheKey() && a.top == b.top && a.opacity == b.opacity;
    }
  };

  const QImage& composed(const SequenceDocument& document, const QList<StackedCard>& cards,
                         const QSize& pixels, double pixelsPerPoint, CaptureMode mode);
  QList<DrawnCard> drawn(const QList<StackedCard>& cards, double pixelsPerPoint);
  void paintPlates(QImage& target, const QList<DrawnCard>& cards, int left) const;

  void cutCorners(QImage& target, double pixelsPerPoint);

  LockScreenScenery scenery_;
  AppGlyphCache glyphs_;
  CardContentCache contents_;

  /// The scenery with plates at rest, on which only the cards' contents differ from frame to frame.
  QImage plated_;
  qint64 platedScenery_ = 0;
  QList<double> platedTops_;

  struct Corner {
    QPoint at;
    QImage mask;
  };
  QList<Corner> corners_;
  QSize cornersOf_;

  QImage picture_;
  qint64 pictureScenery_ = 0;
  QList<DrawnCard> pictureCards_;
};

/// The phone's lock screen on which the pings of a sequence arrive, 390 x 844 points. A pure function of the
/// document's settings, the player's document and time, and the mode: the same inputs give the same pixels.
struct LockScreenView {
  /// Source of the wallpaper, the date and the time.
  SequenceDocument document;
  /// Source of the cards.
  const SequencePlayer& player;
  CaptureMode capturesFrames = CaptureMode::Live;

  /// The pings on screen, newest first, as far as they can reach into the canvas.
  [[nodiscard]] QList<Ping> visiblePings() const;

  /// Fills the canvas from the painter's origin, at any scale of the painter. The cards stand at rest.
  void paint(QPainter& painter, LockScreenCache& cache) const;

  /// The same with the cards where an animation has them, in drawing order.
  void paint(QPainter& painter, LockScreenCache& cache, const QList<StackedCard>& cards) const;

  /// The whole picture at a scale: RGB32 when captured, ARGB32 premultiplied with cut corners when live. The
  /// same image (equal `cacheKey()`) while nothing changes.
  [[nodiscard]] QImage picture(LockScreenCache& cache, const QList<StackedCard>& cards,
                               double pixelsPerPoint) const;

  [[nodiscard]] QList<StackedCard> restingCards() const;
};

/// Pixels of a movie's frame a point, and the frame's size.
inline constexpr double captureScale = 3;
inline constexpr int captureWidth = 1170, captureHeight = 2532;

/// The frame at the player's time, RGB32. The same image (equal `cacheKey()`) while nothing changes.
[[nodiscard]] QImage captureFrame(const LockScreenView& view, LockScreenCache& cache);

}  // namespace brisklet
