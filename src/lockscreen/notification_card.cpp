#include "lockscreen/notification_card.h"

#include "drawing/pictures.h"

#include <algorithm>

namespace brisklet {
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

}  // namespace brisklet
