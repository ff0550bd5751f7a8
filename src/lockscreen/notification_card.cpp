#include "lockscreen/notification_card.h"

#include "platform/picture_memory.h"

#include <algorithm>

namespace brisklet {
namespace {

/// Twice what a canvas holds, so that a stack can change as a whole and back.
constexpr qsizetype mostCachedCards = 20;

/// What a card's content is drawn from.
bool looksAlike(const Ping& a, const Ping& b) {
  return a.title == b.title && a.message == b.message && a.appId == b.appId && a.appLabel == b.appLabel &&
         a.icon == b.icon && a.color == b.color && a.lockTimeLabel() == b.lockTimeLabel();
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
  const auto white = [](double opacity) { return QColor::fromRgbF(1, 1, 1, float(opacity)); };

  glyphs.paint(painter, {ping, glyphSize, glyphCorner}, layout.glyph.topLeft());
  TextLine(ping.title, titleStyle, layout.titleRoom).draw(painter, layout.title, white(1));
  time.draw(painter, layout.time, white(timeOpacity));
  TextLine(ping.message, messageStyle, layout.messageRoom)
      .draw(painter, layout.message, white(messageOpacity));
}

QImage CardContentCache::image(const Ping& ping, const QSizeF& card, const QSize& pixels,
                               AppGlyphCache& glyphs) {
  const auto known = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.pixels == pixels && looksAlike(entry.ping, ping);
  });
  if (known != entries_.end()) {
    std::rotate(known, known + 1, entries_.end());
    return entries_.last().image;
  }
  QImage image = newPicture(pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  {
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.scale(pixels.width() / card.width(), pixels.height() / card.height());
    paintCardContent(painter, card, ping, glyphs);
  }
  if (entries_.size() >= mostCachedCards) entries_.removeFirst();
  entries_.append({ping, pixels, image});
  return image;
}

}  // namespace brisklet
