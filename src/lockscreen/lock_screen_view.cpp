#include "lockscreen/lock_screen_view.h"

#include "drawing/continuous_corners.h"
#include "drawing/device_pixels.h"
#include "drawing/pictures.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace brisklet {
namespace {

namespace Metrics = LockScreenMetrics;

/// Finer than this no picture is made; a painter that is scaled further enlarges it.
constexpr double finestScale = 4.5;

/// Draws a premultiplied picture at any height, fractions of a pixel included.
void drawAt(QImage& target, const QImage& content, int left, double top, double opacity) {
  if (top == std::floor(top)) {
    QPainter painter(&target);
    painter.setOpacity(opacity);
    painter.drawImage(left, static_cast<int>(top), content);
    return;
  }
  const int firstRow = static_cast<int>(std::floor(top));
  // Weights of the content's rows above and below a target row, in 256ths, opacity included.
  const int below = static_cast<int>(std::lround((1 - (top - firstRow)) * opacity * 256));
  const int above = static_cast<int>(std::lround(opacity * 256)) - below;
  const int columns = std::min(content.width(), target.width() - left);
  const std::vector<QRgb> nothing(static_cast<std::size_t>(content.width()), 0);
  for (int row = 0; row <= content.height(); ++row) {
    const int y = firstRow + row;
    if (y < 0 || y >= target.height()) continue;
    const auto line = [&](int index) {
      return index < 0 || index >= content.height()
                 ? nothing.data()
                 : reinterpret_cast<const QRgb*>(content.constScanLine(index));
    };
    const QRgb* upper = line(row - 1);
    const QRgb* lower = line(row);
    QRgb* out = reinterpret_cast<QRgb*>(target.scanLine(y)) + left;
    for (int x = 0; x < columns; ++x) {
      if ((upper[x] | lower[x]) == 0) continue;
      const auto mixed = [&](int shift) {
        return (static_cast<int>(upper[x] >> shift & 0xff) * above +
                static_cast<int>(lower[x] >> shift & 0xff) * below) >>
               8;
      };
      const int keep = 255 - mixed(24);
      const auto over = [&](int shift) {
        return mixed(shift) + (static_cast<int>(out[x] >> shift & 0xff) * keep + 127) / 255;
      };
      out[x] = qRgb(over(16), over(8), over(0));
    }
  }
}

}  // namespace

QList<LockScreenCache::DrawnCard> LockScreenCache::drawn(const QList<StackedCard>& cards,
                                                         double pixelsPerPoint) {
  const LockScreenLayout& layout = scenery_.layout();
  const QSize pixels = scenery_.cardGlass().plateSize();
  const double pitch = Metrics::cardHeight + Metrics::cardSpacing;
  QList<DrawnCard> result;
  for (const StackedCard& card : cards) {
    // Places of the stack lie on whole pixels, and the way between them is as long as they are apart.
    const double place = std::floor(card.y / pitch);
    const auto placeTop = [&](double index) {
      return std::round((layout.cardArea.top() + index * pitch) * pixelsPerPoint);
    };
    const double share = card.y / pitch - place;
    const double top = placeTop(place) + share * (placeTop(place + 1) - placeTop(place));
    const double above = top + pixels.height() + scenery_.cardGlass().reach();
    if (top >= scenery_.picture().height() || above < 0) continue;
    constexpr QSizeF size(Metrics::cardWidth, Metrics::cardHeight);
    result.append({contents_.image(card.ping, size, pixels, glyphs_),
                   contents_.shade(card.ping, size, pixels), top, std::clamp(card.opacity, 0.0, 1.0)});
  }
  return result;
}

void LockScreenCache::cutCorners(QImage& target, double pixelsPerPoint) {
  QPainterPath outside = continuousRoundedRect(target.rect(), Metrics::liveCornerRadius * pixelsPerPoint);
  outside.addRect(target.rect());
  // Every pixel is opaque up to here.
  target.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&target);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  painter.fillPath(outside, Qt::black);
}

QImage LockScreenCache::paintedCards(const QList<DrawnCard>& cards, double pixelsPerPoint,
                                     Rendering rendering) {
  const int left = qRound(Metrics::cardInset * pixelsPerPoint);
  const QImage& scenery = scenery_.picture();
  const auto plated = [&] {
    std::vector<GlassPlate> plates;
    for (const DrawnCard& card : cards) plates.push_back({card.top, card.opacity});
    QImage image = scenery;
    scenery_.cardGlass().paint(image, scenery_.backdrop(), left, plates);
    return image;
  };
  const bool resting = std::all_of(cards.begin(), cards.end(), [](const DrawnCard& card) {
    return card.opacity == 1 && card.top == std::floor(card.top);
  });
  QList<double> tops;
  for (const DrawnCard& card : cards) tops.append(card.top);
  QImage image = resting ? plated_.get({scenery.cacheKey(), tops}, plated) : plated();
  double lowest = 0;
  for (const DrawnCard& card : cards) {
    card.shade.paint(image, {left, qRound(card.top)}, card.opacity);
    // The content comes after its plate and goes before it, so that two texts on one place hardly meet.
    drawAt(image, card.content, left, card.top, card.opacity * card.opacity);
    lowest = std::max(lowest, card.top + card.content.height());
  }
  if (lowest > scenery_.layout().torchOrb.rect.top() * pixelsPerPoint)
    scenery_.paintFront(image, LockScreenScenery::Behind::Cards, pixelsPerPoint);
  if (rendering == Rendering::Live) cutCorners(image, pixelsPerPoint);
  return image;
}

const QImage& LockScreenCache::composed(const SequenceDocument& document, const QList<StackedCard>& cards,
                                        const QSize& pixels, double pixelsPerPoint, Rendering rendering) {
  scenery_.update(document, pixels, pixelsPerPoint, rendering);
  const QList<DrawnCard> shown = drawn(cards, pixelsPerPoint);
  return picture_.get({scenery_.picture().cacheKey(), shown},
                      [&] { return paintedCards(shown, pixelsPerPoint, rendering); });
}

QList<Ping> LockScreenView::visiblePings() const {
  SequenceDocument shown = player.document();
  shown.maxVisible = std::min<qint64>(shown.maxVisible, maxCardsOnCanvas);
  return shown.visiblePings(player.elapsedMs());
}

QList<StackedCard> LockScreenView::restingCards() const {
  CardStackAnimation stack;
  stack.reset(visiblePings());
  return stack.cards(0);
}

QImage LockScreenView::picture(LockScreenCache& cache, const QList<StackedCard>& cards,
                               double pixelsPerPoint) const {
  const double scale = std::clamp(pixelsPerPoint, 1 / Metrics::canvasWidth, finestScale);
  const QSize pixels(std::max(1, qRound(Metrics::canvasWidth * scale)),
                     std::max(1, qRound(Metrics::canvasHeight * scale)));
  return cache.composed(document, cards, pixels, scale, capturesFrames);
}

void LockScreenView::paint(QPainter& painter, LockScreenCache& cache, const QList<StackedCard>& cards) const {
  const double scale = deviceScale(painter);
  const QImage image = picture(cache, cards, scale);
  if (scale > finestScale)
    painter.drawImage(QRectF(0, 0, Metrics::canvasWidth, Metrics::canvasHeight), image);
  else
    drawOnPixels(painter, painter.deviceTransform().map(QPointF()).toPoint(), image);
}

QImage captureFrame(const LockScreenView& view, LockScreenCache& cache) {
  const LockScreenView captured{view.document, view.player, Rendering::Movie};
  QImage picture = captured.picture(cache, captured.restingCards(), captureScale);
  // A picture that memory did not suffice for is null, and what is painted on it is lost without a word.
  if (picture.isNull()) throw std::bad_alloc();
  return picture;
}

}  // namespace brisklet
