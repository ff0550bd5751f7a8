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

inline constexpr TextStyle titleStyle{15, FontWeight::Semibold};
inline constexpr TextStyle timeStyle{13, FontWeight::Regular};
inline constexpr TextStyle messageStyle{15, FontWeight::Regular};
inline constexpr double timeOpacity = 0.7, messageOpacity = 0.94;

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

/// Keeps what stands on the cards last drawn, as pictures.
class CardContentCache {
 public:
  /// The content of a card of `card` points, in a picture of `pixels` that covers the card. ARGB32
  /// premultiplied.
  [[nodiscard]] QImage image(const Ping& ping, const QSizeF& card, const QSize& pixels,
                             AppGlyphCache& glyphs);

 private:
  /// Twice what a canvas holds, so that a stack can change as a whole and back.
  QCache<QStringList, QImage> contents_{20};
};

}  // namespace brisklet
