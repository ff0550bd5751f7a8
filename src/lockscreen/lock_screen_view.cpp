#include "lockscreen/lock_screen_view.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/continuous_corners.h"
#include "platform/picture_memory.h"

namespace brisklet {
namespace {

namespace Metrics = LockScreenMetrics;

/// Finer than this no picture is made; a painter that is scaled further enlarges it.
constexpr double finestScale = 4;

/// Draws a premultiplied picture at any height, fractions of a pixel included.
void drawAt(QImage& target, const QImage& content, int left, double top, double opacity) {
  if (top == std::floor(top)) {
    QPainter painter(&target);
    painter.setOpacity(opacity);
    painter.drawImage(left, int(top), content);
    return;
  }
  const int firstRow = int(std::floor(top));
  // Weights of the content's rows above and below a target row, in 256ths, opacity included.
  const int below = int(std::lround((1 - (top - firstRow)) * opacity * 256));
  const int above = int(std::lround(opacity * 256)) - below;
  const int columns = std::min(content.width(), target.width() - left);
  const std::vector<QRgb> nothing(std::size_t(content.width()), 0);
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
        return (int(upper[x] >> shift & 0xff) * above + int(lower[x] >> shift & 0xff) * below) >> 8;
      };
      const int keep = 255 - mixed(24);
      const auto over = [&](int shift) {
        return mixed(shift) + (int(out[x] >> shift & 0xff) * keep + 127) / 255;
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
    result.append(
        {contents_.image(card.ping, QSizeF(Metrics::cardWidth, Metrics::cardHeight), pixels, glyphs_), top,
         std::clamp(card.opacity, 0.0, 1.0)});
  }
  return result;
}

void LockScreenCache::paintPlates(QImage& target, const QList<DrawnCard>& cards, int left) const {
  std::vector<GlassPlate> plates;
  for (const DrawnCard& card : cards) plates.push_back({card.top, card.opacity});
  scenery_.cardGlass().paint(target, scenery_.backdrop(), left, plates);
}

void LockScreenCache::cutCorners(QImage& target, double pixelsPerPoint) {
  const double radius = Metrics::liveCornerRadius * pixelsPerPoint;
  if (target.size() != cornersOf_) {
    cornersOf_ = target.size();
    corners_.clear();
    const QPainterPath outline = continuousRoundedRect(QRectF(target.rect()), radius);
    // A corner takes less than two radii of a side.
    const QSize size = QSizeF(2 * radius, 2 * radius).toSize().boundedTo(target.size() / 2);
    const QPoint farCorner(target.width() - size.width(), target.height() - size.height());
    for (const QPoint& at : {QPoint(0, 0), QPoint(farCorner.x(), 0), QPoint(0, farCorner.y()), farCorner}) {
      QImage mask = newPicture(size, QImage::Format_ARGB32_Premultiplied);
      mask.fill(Qt::transparent);
      QPainter painter(&mask);
      painter.setRenderHint(QPainter::Antialiasing);
      painter.translate(-at);
      painter.fillPath(outline, Qt::black);
      corners_.append({at, mask});
    }
  }
  // Every pixel is opaque up to here.
  target.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&target);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  for (const Corner& corner : corners_) painter.drawImage(corner.at, corner.mask);
}

const QImage& LockScreenCache::composed(const SequenceDocument& document, const QList<StackedCard>& cards,
                                        const QSize& pixels, double pixelsPerPoint, CaptureMode mode) {
  scenery_.update(document, pixels, pixelsPerPoint, mode);
  const qint64 scenery = scenery_.picture().cacheKey();
  QList<DrawnCard> drawnCards = drawn(cards, pixelsPerPoint);
  if (!picture_.isNull() && scenery == pictureScenery_ && drawnCards == pictureCards_) return picture_;

  const int left = qRound(Metrics::cardInset * pixelsPerPoint);
  const bool resting = std::all_of(drawnCards.begin(), drawnCards.end(), [](const DrawnCard& card) {
    return card.opacity == 1 && card.top == std::floor(card.top);
  });
  QImage next;
  if (resting) {
    QList<double> tops;
    for (const DrawnCard& card : drawnCards) tops.append(card.top);
    if (plated_.isNull() || scenery != platedScenery_ || tops != platedTops_) {
      plated_ = {};  // until it is whole
      QImage plated = scenery_.picture();
      makeWritable(plated);
      paintPlates(plated, drawnCards, left);
      plated_ = std::move(plated);
      platedScenery_ = scenery;
      platedTops_ = std::move(tops);
    }
    next = plated_;
    makeWritable(next);
  } else {
    next = scenery_.picture();
    makeWritable(next);
    paintPlates(next, drawnCards, left);
  }
  double lowest = 0;
  for (const DrawnCard& card : drawnCards) {
    // The content comes after its plate and goes before it, so that two texts on one place hardly meet.
    drawAt(next, card.content, left, card.top, card.opacity * card.opacity);
    lowest = std::max(lowest, card.top + card.content.height());
  }
  if (lowest > scenery_.layout().torchOrb.rect.top() * pixelsPerPoint) scenery_.paintFront(next);
  if (mode == CaptureMode::Live) cutCorners(next, pixelsPerPoint);
  picture_ = std::move(next);
  pictureScenery_ = scenery;
  pictureCards_ = std::move(drawnCards);
  return picture_;
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

void LockScreenView::paint(QPainter& painter, LockScreenCache& cache) const {
  paint(painter, cache, restingCards());
}

void LockScreenView::paint(QPainter& painter, LockScreenCache& cache, const QList<StackedCard>& cards) const {
  const QTransform toDevice = painter.deviceTransform();
  const double scale = std::sqrt(std::abs(toDevice.determinant()));
  if (!(scale > 0)) return;
  const QImage image = picture(cache, cards, scale);
  const bool upright = toDevice.type() <= QTransform::TxScale && toDevice.m11() > 0 &&
                       qFuzzyCompare(toDevice.m11(), toDevice.m22()) && scale <= finestScale;
  if (!upright) {
    painter.drawImage(QRectF(0, 0, Metrics::canvasWidth, Metrics::canvasHeight), image);
    return;
  }
  // Pixel by pixel: undoing the device's own scale as well leaves whole pixels.
  painter.save();
  painter.setWorldTransform(toDevice.inverted() * painter.worldTransform());
  const QPointF corner = toDevice.map(QPointF(0, 0));
  painter.drawImage(QPointF(std::round(corner.x()), std::round(corner.y())), image);
  painter.restore();
}

QImage captureFrame(const LockScreenView& view, LockScreenCache& cache) {
  const LockScreenView captured{view.document, view.player, CaptureMode::Capture};
  return captured.picture(cache, captured.restingCards(), captureScale);
}

}  // namespace brisklet
