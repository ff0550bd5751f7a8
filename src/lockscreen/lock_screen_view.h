#pragma once

#include "lockscreen/card_stack_animation.h"
#include "lockscreen/kept.h"
#include "lockscreen/lock_screen_scenery.h"
#include "lockscreen/notification_card.h"
#include "lockscreen/rendering.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

#include <QImage>
#include <QList>
#include <QPainter>
#include <QSize>
#include <utility>

namespace brisklet {

/// What a host keeps of the lock screens that it painted: one picture and its parts, at the scale, in the
/// mode and of the document last painted. Painting again what has not changed costs next to nothing.
class LockScreenCache {
 public:
  LockScreenCache() = default;
  LockScreenCache(const LockScreenCache&) = delete;
  LockScreenCache& operator=(const LockScreenCache&) = delete;

  /// Looks at the photo again, even where a movie ignores its changes: another movie begins.
  void expectOtherPhoto() { scenery_.wallpaperSource().expectOtherPhoto(); }

  [[nodiscard]] WallpaperSource& wallpaperSource() { return scenery_.wallpaperSource(); }

  /// The wallpaper of the picture painted last.
  [[nodiscard]] const QImage& wallpaper() const { return scenery_.wallpaper(); }

 private:
  friend struct LockScreenView;

  /// A card as it stands in the picture, in pixels.
  struct DrawnCard {
    QImage content;
    TimeShade shade;
    double top;
    double opacity;

    friend bool operator==(const DrawnCard& a, const DrawnCard& b) {
      return a.content.cacheKey() == b.content.cacheKey() && a.top == b.top && a.opacity == b.opacity;
    }
  };

  /// What a picture is made of.
  struct PictureKey {
    qint64 scenery;
    QList<DrawnCard> cards;

    friend bool operator==(const PictureKey&, const PictureKey&) = default;
  };

  const QImage& composed(const SequenceDocument& document, const QList<StackedCard>& cards,
                         const QSize& pixels, double pixelsPerPoint, Rendering rendering);
  QList<DrawnCard> drawn(const QList<StackedCard>& cards, double pixelsPerPoint);
  QImage paintedCards(const QList<DrawnCard>& cards, double pixelsPerPoint, Rendering rendering);
  static void cutCorners(QImage& target, double pixelsPerPoint);

  LockScreenScenery scenery_;
  AppGlyphCache glyphs_;
  CardContentCache contents_;

  /// The scenery with plates at rest, on which only the cards' contents differ from frame to frame.
  Kept<std::pair<qint64, QList<double>>, QImage> plated_;
  Kept<PictureKey, QImage> picture_;
};

/// The phone's lock screen on which the pings of a sequence arrive, 390 x 844 points. A pure function of the
/// document's settings, the player's document and time, and the mode: the same inputs give the same pixels.
struct LockScreenView {
  /// Source of the wallpaper, the date and the time.
  SequenceDocument document;
  /// Source of the cards.
  const SequencePlayer& player;
  Rendering capturesFrames = Rendering::Live;

  /// The pings on screen, newest first, as far as they can reach into the canvas.
  [[nodiscard]] QList<Ping> visiblePings() const;

  /// Fills the canvas from the painter's origin, at any scale of the painter, with the cards where an
  /// animation has them, in drawing order.
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
