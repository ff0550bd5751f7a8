#pragma once

#include "drawing/text_line.h"
#include "model/sequence_document.h"

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QString>

namespace brisklet {

/// Measures of the lock screen, in points of its 390 x 844 canvas.
namespace LockScreenMetrics {

inline constexpr double canvasWidth = 390, canvasHeight = 844;
inline constexpr double liveCornerRadius = 44;
/// The gap between neighbours in a row that names none.
inline constexpr double standardSpacing = 8;

inline constexpr double statusInset = 28, statusTop = 14;
inline constexpr double statusTextSize = 16, statusSymbolSize = 14, statusSymbolSpacing = 6;

inline constexpr double clockTop = 10;
inline constexpr double dateSize = 22, dateTracking = -0.35, dateOpacity = 0.96;
inline constexpr double timeSize = 96, timeTracking = -3, timeOpacity = 0.9;

inline constexpr double cardInset = 18, cardAreaTop = 22, cardSpacing = 10;
inline constexpr double cardWidth = canvasWidth - 2 * cardInset, cardHeight = 76;

inline constexpr double orbSize = 58, orbInset = 42, orbBottom = 10, orbSymbolSize = 20;

inline constexpr double indicatorWidth = 134, indicatorHeight = 5, indicatorBottom = 8;
inline constexpr double indicatorOpacity = 0.92;

}  // namespace LockScreenMetrics

/// A named symbol image, centred in its rectangle.
struct PlacedSymbol {
  QString name;
  QRectF rect;

  [[nodiscard]] friend bool operator==(const PlacedSymbol&, const PlacedSymbol&) = default;
};

/// Where everything on the lock screen stands, in points from the canvas's top left corner.
struct LockScreenLayout {
  /// The status row; its height is that of its tallest child.
  QRectF statusBar;
  /// The left end of its time's baseline, and the room that the time has.
  QPointF statusTime;
  double statusTimeRoom = 0;
  QList<PlacedSymbol> statusSymbols;

  /// The date's and the time's lines at their natural size, and the block of both.
  QRectF date;
  QRectF time;
  QRectF clockBlock;

  /// What is left between the clock and the quick actions; its height is never negative.
  QRectF cardArea;
  /// The cards from the newest down, as far as they reach into the canvas. Those that do not fit the card
  /// area run on below, under the quick actions.
  QList<QRectF> cards;

  PlacedSymbol torchOrb;
  PlacedSymbol cameraOrb;
  QRectF homeIndicator;

  /// The place of the card at `index` of the stack, also beyond the canvas.
  [[nodiscard]] QRectF card(qsizetype index) const;
};

/// The styles of the canvas's own texts.
namespace LockScreenStyles {

inline constexpr TextStyle status{LockScreenMetrics::statusTextSize, FontWeight::Semibold};
inline constexpr TextStyle date{LockScreenMetrics::dateSize, FontWeight::Semibold,
                                LockScreenMetrics::dateTracking};
inline constexpr TextStyle time{LockScreenMetrics::timeSize, FontWeight::Semibold,
                                LockScreenMetrics::timeTracking};

}  // namespace LockScreenStyles

/// The date or the time in lines of the canvas's width. Of a text that no canvas could hold, its beginning.
[[nodiscard]] TextBlock labelLines(const QString& label, const TextStyle& style);

/// The layout of the document's status bar and clock over a stack of `cardCount` cards.
[[nodiscard]] LockScreenLayout lockScreenLayout(const SequenceDocument& document, qsizetype cardCount);

/// The most cards that reach into any canvas.
inline constexpr qsizetype maxCardsOnCanvas = 8;

}  // namespace brisklet
