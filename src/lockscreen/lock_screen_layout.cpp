#include "lockscreen/lock_screen_layout.h"

#include "drawing/symbol_image.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

namespace Metrics = LockScreenMetrics;

/// More characters of a label than this reach beyond the canvas at any size that is drawn.
constexpr qsizetype maxLabelCharacters = 2000;

QRectF centredBelow(double top, const QSizeF& size) {
  return {(Metrics::canvasWidth - size.width()) / 2, top, size.width(), size.height()};
}

}  // namespace

TextBlock labelLines(const QString& label, const TextStyle& style) {
  return {label.left(maxLabelCharacters), style, Metrics::canvasWidth};
}

QRectF LockScreenLayout::card(qsizetype index) const {
  return {Metrics::cardInset,
          cardArea.top() + static_cast<double>(index) * (Metrics::cardHeight + Metrics::cardSpacing),
          Metrics::cardWidth, Metrics::cardHeight};
}

LockScreenLayout lockScreenLayout(const SequenceDocument& document, qsizetype cardCount) {
  LockScreenLayout layout;

  const double statusTextHeight = lineHeight(LockScreenStyles::status);
  const QStringList symbolNames{u"cellularbars"_s, u"wifi"_s, u"battery.100percent"_s};
  double statusHeight = statusTextHeight;
  for (const QString& name : symbolNames)
    statusHeight = std::max(statusHeight, symbolSize(name, Metrics::statusSymbolSize).height());
  layout.statusBar = {Metrics::statusInset, Metrics::statusTop,
                      Metrics::canvasWidth - 2 * Metrics::statusInset, statusHeight};
  const double axis = layout.statusBar.center().y();
  double right = layout.statusBar.right();
  for (auto name = symbolNames.crbegin(); name != symbolNames.crend(); ++name) {
    const QSizeF size = symbolSize(*name, Metrics::statusSymbolSize);
    layout.statusSymbols.prepend({*name, {QPointF(right - size.width(), axis - size.height() / 2), size}});
    right -= size.width() + Metrics::statusSymbolSpacing;
  }
  layout.statusTime = {layout.statusBar.left(),
                       axis - statusTextHeight / 2 + lineAscent(LockScreenStyles::status)};
  layout.statusTimeRoom =
      right + Metrics::statusSymbolSpacing - layout.statusBar.left() - 2 * Metrics::standardSpacing;

  const double clockTop = layout.statusBar.bottom() + Metrics::clockTop;
  layout.date = centredBelow(clockTop, labelLines(document.dateLabel, LockScreenStyles::date).size());
  layout.time =
      centredBelow(layout.date.bottom(), labelLines(document.timeLabel, LockScreenStyles::time).size());
  layout.clockBlock = {0, clockTop, Metrics::canvasWidth, layout.time.bottom() - clockTop};

  const double indicatorHeight = Metrics::indicatorHeight + Metrics::indicatorBottom;
  const double rowHeight = Metrics::orbSize + Metrics::orbBottom;
  const double cardsTop = layout.clockBlock.bottom() + Metrics::cardAreaTop;
  // A clock that fills the canvas pushes what follows out of it.
  const double rowTop = std::max(cardsTop, Metrics::canvasHeight - indicatorHeight - rowHeight);
  layout.cardArea = {Metrics::cardInset, cardsTop, Metrics::cardWidth, rowTop - cardsTop};
  for (qsizetype index = 0; index < cardCount; ++index) {
    const QRectF card = layout.card(index);
    if (card.top() >= Metrics::canvasHeight) break;
    layout.cards.append(card);
  }

  const QRectF orb(0, rowTop, Metrics::orbSize, Metrics::orbSize);
  layout.torchOrb = {u"flashlight.off.fill"_s, orb.translated(Metrics::orbInset, 0)};
  layout.cameraOrb = {u"camera.fill"_s,
                      orb.translated(Metrics::canvasWidth - Metrics::orbInset - Metrics::orbSize, 0)};
  layout.homeIndicator = {(Metrics::canvasWidth - Metrics::indicatorWidth) / 2, rowTop + rowHeight,
                          Metrics::indicatorWidth, Metrics::indicatorHeight};
  return layout;
}

}  // namespace brisklet
