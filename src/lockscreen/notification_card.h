#pragma once

#include "drawing/text_line.h"
#include "lockscreen/app_glyph.h"
#include "model/ping.h"

#include <QCache>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QRectF>
#include <QStringList>

namespace brisklet {

/// Measures of a card, in points.
namespace CardMetrics {

inline constexpr double cornerRadius = 28;
inline constexpr double insetX = 14, insetY = 12;
inline constexpr double glyphSize = 38, glyphCorner = 10, glyphGap = 10;
inline constexpr double lineSpacing = 1;
/// The flexible space between title and time is at least this wide, and stands off from both.
inline constexpr double leastSpace = 8, spacing = 8;

// Tracking is optical: Inter without any looks airy beside what phones set.
inline constexpr TextStyle titleStyle{15, FontWeight::Semibold, -0.15};
inline constexpr TextStyle timeStyle{13, FontWeight::Regular, -0.1};
inline constexpr TextStyle messageStyle{15, FontWeight::Regular, -0.15};
inline constexpr double timeOpacity = 0.7, messageOpacity = 0.94;
/// How much of a bright plate's light the shade behind the time takes, whose letters are faint.
inline constexpr float timeShade = 0.17F;

}  // namespace CardMetrics

/// Where a card's parts stand, in points from its upper left corner.
struct CardLayout {
  QRectF glyph;
  /// Left ends of the baselines.
  QPointF title, time, message;
  /// The widths beyond which title and message are cut.
  double titleRoom = 0, messageRoom = 0;
};

/// The layout of a card of this size whose time label is `timeWidth` wide.
[[nodiscard]] CardLayout cardLayout(const QSizeF& card, double timeWidth);

/// Paints what stands on the card's plate, the card's upper left corner at the painter's origin.
void paintCardContent(QPainter& painter, const QSizeF& card, const Ping& ping, AppGlyphCache& glyphs);

/// How much light is left of this brightness (0 to 1) right behind the time: where the plate is not so bright
/// that its letters would fade, all of it.
[[nodiscard]] float lightBehindTime(float luma);

/// The shade behind the time of a card, which nobody sees.
struct TimeShade {
  QPoint place;   // pixels from the card's upper left corner
  QImage shares;  // Grayscale8: how much of it lies on each pixel

  /// Darkens a card whose upper left corner is here, as far as the picture is bright.
  void paint(QImage& target, const QPoint& card, double opacity) const;
};
[[nodiscard]] TimeShade timeShade(const Ping& ping, const QSizeF& card, double pixelsPerPoint);

/// Keeps what stands on the cards last drawn, as pictures.
class CardContentCache {
 public:
  /// The content of a card of `card` points, in a picture of `pixels` that covers the card. ARGB32
  /// premultiplied.
  [[nodiscard]] QImage image(const Ping& ping, const QSizeF& card, const QSize& pixels,
                             AppGlyphCache& glyphs);
  /// The shade behind the card's time, in its pixels.
  [[nodiscard]] TimeShade shade(const Ping& ping, const QSizeF& card, const QSize& pixels);

 private:
  /// Twice what a canvas holds, so that a stack can change as a whole and back.
  QCache<QStringList, QImage> contents_{12};
  QCache<QStringList, TimeShade> shades_{12};
};

}  // namespace brisklet
