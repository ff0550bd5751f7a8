#include "lockscreen/app_glyph.h"

#include "base/graphemes.h"
#include "drawing/continuous_corners.h"
#include "drawing/device_pixels.h"
#include "drawing/pictures.h"
#include "drawing/symbol_image.h"
#include "drawing/text_line.h"
#include "lockscreen/bundle_image.h"
#include "lockscreen/wallpaper.h"
#include "model/catalogue.h"
#include "model/color.h"

#include <QColor>
#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

/// The space around a picture that stands on a black tile, as a share of the tile.
constexpr double standingInset = 0.18;
constexpr double messageSymbolSize = 18, customMarkShare = 0.42, currencyMarkSize = 22, iconMarkSize = 16;

QColor qtColor(const Color& color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue));
}

/// Draws a mark so that what is seen of it, not its line, stands in the middle.
void drawMark(QPainter& painter, const QString& text, double sizePt, double tileSize) {
  const TextLine line(text, {sizePt, FontWeight::Bold}, 8 * tileSize);
  const QSizeF room(line.width() + 2 * line.height(), 3 * line.height());
  const QPointF baseline(line.height(), line.height() + line.ascent());
  const QRectF ink = inkBox(room, 64, [&](QPainter& finer) { line.draw(finer, baseline, Qt::white); });
  if (ink.isEmpty()) return;
  line.draw(painter, baseline + QPointF(tileSize / 2, tileSize / 2) - ink.center(), Qt::white);
}

/// The first character of a label that can be seen: marks of direction have no picture.
QString firstLetter(const QString& label) {
  const auto seen = std::find_if(label.begin(), label.end(),
                                 [](QChar c) { return !c.isSpace() && c.category() != QChar::Other_Format; });
  return firstGrapheme(label.sliced(seen - label.begin()));
}

void drawFallback(QPainter& painter, const Ping& ping, double tileSize) {
  const QRectF tile(0, 0, tileSize, tileSize);
  if (ping.appId == u"messages"_s) {
    painter.fillRect(tile, QColor::fromRgbF(0.204F, 0.78F, 0.349F));
    drawSymbol(painter, u"message.fill"_s, messageSymbolSize, tile.center(), Qt::white);
  } else if (ping.appId == customId) {
    painter.fillRect(tile, QColor(0x11, 0x11, 0x11));
    drawMark(painter, firstLetter(ping.appLabel).toUpper(), customMarkShare * tileSize, tileSize);
  } else if (ping.appId == u"cashapp"_s) {
    painter.fillRect(tile, QColor::fromRgbF(0, 0.839F, 0.196F));
    drawMark(painter, u"$"_s, currencyMarkSize, tileSize);
  } else {
    painter.fillRect(tile, qtColor(Color::fromHex(ping.color)));
    drawMark(painter, ping.icon, iconMarkSize, tileSize);
  }
}

/// Draws the whole picture in the middle of a square of `pixels`, `inset` pixels from its sides.
void drawFitted(QPainter& painter, const QImage& picture, int pixels, double inset) {
  const double room = pixels - 2 * inset;
  const QSize fitted = picture.size().scaled(qRound(room), qRound(room), Qt::KeepAspectRatio);
  painter.drawImage(QPointF((pixels - fitted.width()) / 2.0, (pixels - fitted.height()) / 2.0),
                    picture.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

}  // namespace

QImage AppGlyph::image(double pixelsPerPoint) const {
  const int pixels = std::max(1, qRound(size * pixelsPerPoint));
  const QSize tile(pixels, pixels);
  const std::optional<QImage> picture = BundleImage::named(ping.appId);
  // A clip's edge would be jagged: the corners are cut by covering a mask instead.
  const QImage mask = painted(tile, 1, [&](QPainter& painter) {
    painter.fillPath(continuousRoundedRect({0, 0, static_cast<double>(pixels), static_cast<double>(pixels)},
                                           corner * pixels / size),
                     Qt::black);
  });
  return painted(tile, 1, [&](QPainter& painter) {
    if (picture && ping.appId == u"tiktok"_s) {
      painter.fillRect(0, 0, pixels, pixels, Qt::black);
      drawFitted(painter, *picture, pixels, standingInset * pixels);
    } else if (picture) {
      painter.drawImage(0, 0, photoFill(*picture, tile));
    } else {
      painter.scale(pixels / size, pixels / size);
      drawFallback(painter, ping, size);
      painter.resetTransform();
    }
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, mask);
  });
}

QImage AppGlyphCache::image(const AppGlyph& glyph, double pixelsPerPoint) {
  const Ping& ping = glyph.ping;
  QStringList key{ping.appId, ping.appLabel, ping.icon, ping.color};
  for (const double measure : {glyph.size, glyph.corner, pixelsPerPoint})
    key += QString::number(measure, 'g', 17);
  if (!tiles_.contains(key)) tiles_.insert(key, new QImage(glyph.image(pixelsPerPoint)));
  return *tiles_.object(key);
}

void AppGlyphCache::paint(QPainter& painter, const AppGlyph& glyph, const QPointF& topLeft) {
  drawOnPixels(painter, painter.deviceTransform().map(topLeft).toPoint(), image(glyph, deviceScale(painter)));
}

}  // namespace brisklet
