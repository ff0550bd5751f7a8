#include "lockscreen/notification_card.h"

#include "base/vectorised.h"
#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "drawing/pictures.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace brisklet {

namespace {

/// Between these lumas of a plate, 0 to 1, the shade behind the time sets in.
constexpr float faintFrom = 0.43F, faintTo = 0.5F;

/// Darkens pixels in a row by their shares of the shade, which are in 255ths.
BRISKLET_VECTORISED void shade(QRgb* __restrict pixels, const uchar* __restrict shares, int count,
                               float opacity, const float* __restrict dither) {
  // Luma in whole numbers, which the compiler can clamp in vectors.
  constexpr int full = 255 * 10000;
  constexpr int from = static_cast<int>(full * faintFrom),
                range = static_cast<int>(full * (faintTo - faintFrom));
  const float most = CardMetrics::timeShade * opacity / 255 / range;
  for (int x = 0; x < count; ++x) {
    const QRgb pixel = pixels[x];
    const int red = pixel >> 16 & 0xff, green = pixel >> 8 & 0xff, blue = pixel & 0xff;
    const int luma = 2126 * red + 7152 * green + 722 * blue;
    const int share = std::min(std::max(luma - from, 0), range);
    const float left = 1 - most * static_cast<float>(share) * static_cast<float>(static_cast<int>(shares[x]));
    const auto level = [&](int value) {
      return static_cast<QRgb>(static_cast<int>(static_cast<float>(value) * left + dither[x]));
    };
    pixels[x] = 0xff000000 | level(red) << 16 | level(green) << 8 | level(blue);
  }
}

}  // namespace

CardLayout cardLayout(const QSizeF& card, double timeWidth) {
  using namespace CardMetrics;
  const double titleAscent = lineAscent(titleStyle), timeAscent = lineAscent(timeStyle);
  const double ascent = std::max(titleAscent, timeAscent);
  const double senderHeight =
      ascent + std::max(lineHeight(titleStyle) - titleAscent, lineHeight(timeStyle) - timeAscent);
  const double rowHeight = std::max(glyphSize, senderHeight + lineSpacing + lineHeight(messageStyle));

  CardLayout layout;
  const double top = (card.height() - rowHeight) / 2;
  layout.glyph = {insetX, top, glyphSize, glyphSize};
  const double left = layout.glyph.right() + glyphGap;
  const double right = card.width() - insetX;
  layout.title = {left, top + ascent};
  layout.time = {right - timeWidth, top + ascent};
  layout.message = {left, top + senderHeight + lineSpacing + lineAscent(messageStyle)};
  layout.titleRoom = std::max(0.0, right - timeWidth - leastSpace - 2 * spacing - left);
  layout.messageRoom = right - left;
  return layout;
}

void paintCardContent(QPainter& painter, const QSizeF& card, const Ping& ping, AppGlyphCache& glyphs) {
  using namespace CardMetrics;
  const TextLine time(ping.lockTimeLabel(), timeStyle);
  const CardLayout layout = cardLayout(card, time.width());
  const auto white = [](double opacity) { return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)); };

  glyphs.paint(painter, {ping, glyphSize, glyphCorner}, layout.glyph.topLeft());
  TextLine(ping.title, titleStyle, layout.titleRoom).draw(painter, layout.title, white(1));
  time.draw(painter, layout.time, white(timeOpacity));
  TextLine(ping.message, messageStyle, layout.messageRoom)
      .draw(painter, layout.message, white(messageOpacity));
}

float lightBehindTime(float luma) {
  return 1 - CardMetrics::timeShade * std::clamp((luma - faintFrom) / (faintTo - faintFrom), 0.0F, 1.0F);
}

TimeShade timeShade(const Ping& ping, const QSizeF& card, double pixelsPerPoint) {
  constexpr QSizeF reach(130, 56);  // points around the letters: so far that it shows no end
  const TextLine time(ping.lockTimeLabel(), CardMetrics::timeStyle);
  const QPointF baseline = cardLayout(card, time.width()).time;
  const double height = 0.75 * time.ascent();
  const QRectF letters(baseline - QPointF(0, height), QSizeF(time.width(), height));
  const QRect pixels(qRound((letters.left() - reach.width()) * pixelsPerPoint), 0,
                     qRound((card.width() - letters.left() + reach.width()) * pixelsPerPoint),
                     qRound(card.height() * pixelsPerPoint));
  const QImage plate = painted(pixels.size(), pixelsPerPoint, [&](QPainter& painter) {
    painter.translate(-pixels.left() / pixelsPerPoint, 0);
    painter.fillPath(continuousRoundedRect({QPointF(), card}, CardMetrics::cornerRadius), Qt::white);
  });
  TimeShade shade{pixels.topLeft(), QImage(pixels.size(), QImage::Format_Grayscale8)};
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width(); ++x) {
      const QPointF point = (QPointF(pixels.topLeft()) + QPointF(x + 0.5, y + 0.5)) / pixelsPerPoint;
      const double right = std::max({letters.left() - point.x(), point.x() - letters.right(), 0.0});
      const double down = std::max({letters.top() - point.y(), point.y() - letters.bottom(), 0.0});
      const double share = std::max(0.0, 1 - std::hypot(right / reach.width(), down / reach.height()));
      shade.shares.scanLine(y)[x] =
          static_cast<uchar>(std::lround(qAlpha(plate.pixel(x, y)) * share * share * (3 - 2 * share)));
    }
  }
  return shade;
}

void TimeShade::paint(QImage& target, const QPoint& card, double opacity) const {
  const QPoint corner = card + place;
  const QRect here = QRect(corner, shares.size()) & target.rect();
  if (here.isEmpty()) return;
  std::vector<float> dither(static_cast<std::size_t>(here.width()));
  for (int y = here.top(); y <= here.bottom(); ++y) {
    for (std::size_t x = 0; x < dither.size(); ++x)
      dither[x] = x < 8 ? ditherAt(here.left() + static_cast<int>(x), y) : dither[x - 8];
    shade(reinterpret_cast<QRgb*>(target.scanLine(y)) + here.left(),
          shares.constScanLine(y - corner.y()) + here.left() - corner.x(), here.width(),
          static_cast<float>(opacity), dither.data());
  }
}

QImage CardContentCache::image(const Ping& ping, const QSizeF& card, const QSize& pixels,
                               AppGlyphCache& glyphs) {
  const QStringList key{ping.title, ping.message, ping.appId,           ping.appLabel,
                        ping.icon,  ping.color,   ping.lockTimeLabel(), QString::number(pixels.width())};
  if (!contents_.contains(key)) {
    contents_.insert(key, new QImage(painted(pixels, pixels.width() / card.width(), [&](QPainter& painter) {
                       paintCardContent(painter, card, ping, glyphs);
                     })));
  }
  return *contents_.object(key);
}

TimeShade CardContentCache::shade(const Ping& ping, const QSizeF& card, const QSize& pixels) {
  const QStringList key{ping.lockTimeLabel(), QString::number(pixels.width())};
  if (!shades_.contains(key))
    shades_.insert(key, new TimeShade(timeShade(ping, card, pixels.width() / card.width())));
  return *shades_.object(key);
}

}  // namespace brisklet
