#include "lockscreen/app_glyph.h"

#include "lockscreen/bundle_image.h"
#include "lockscreen/wallpaper.h"
#include "model/color.h"
#include "model/text.h"
#include "platform/continuous_corners.h"
#include "platform/picture_memory.h"
#include "platform/symbol_image.h"
#include "platform/text_line.h"

#include <QColor>
#include <algorithm>
#include <cmath>
#include <optional>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

/// The space around a picture that stands on a black tile, as a share of the tile.
constexpr double standingInset = 0.18;
constexpr double messageSymbolSize = 18, customMarkShare = 0.42, currencyMarkSize = 22, iconMarkSize = 16;

constexpr qsizetype mostCachedTiles = 64;

QColor qtColor(const Color& color) {
  return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue));
}

/// The box that the drawn parts of a line fill, points from the left end of its baseline.
QRectF inkBox(const TextLine& line) {
  constexpr double scale = 4;
  const double aside = line.height();
  const QSizeF room(line.width() + 2 * aside, 3 * line.height());
  QImage image = newPicture((room * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  const QPointF baseline(aside, line.height() + line.ascent());
  {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    line.draw(painter, baseline, Qt::white);
  }
  int left = image.width(), right = -1, top = image.height(), bottom = -1;
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(row[x]) < 64) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  if (right < 0) return {};
  return QRectF(left / scale, top / scale, (right + 1 - left) / scale, (bottom + 1 - top) / scale)
      .translated(-baseline);
}

/// Draws a mark so that what is seen of it, not its line, stands in the middle.
void drawMark(QPainter& painter, const QString& text, double sizePt, double tileSize) {
  const TextLine line(text, {sizePt, FontWeight::Bold}, 8 * tileSize);
  const QRectF ink = inkBox(line);
  if (!ink.isEmpty()) line.draw(painter, QPointF(tileSize / 2, tileSize / 2) - ink.center(), Qt::white);
}

void drawFallback(QPainter& painter, const Ping& ping, double tileSize) {
  const QRectF tile(0, 0, tileSize, tileSize);
  if (ping.appId == u"messages"_s) {
    painter.fillRect(tile, QColor::fromRgbF(0.204F, 0.78F, 0.349F));
    drawSymbol(painter, u"message.fill"_s, messageSymbolSize, tile.center(), Qt::white);
  } else if (ping.appId == u"custom"_s) {
    painter.fillRect(tile, QColor(0x11, 0x11, 0x11));
    drawMark(painter, firstCharacter(ping.appLabel).toUpper(), customMarkShare * tileSize, tileSize);
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

/// What a tile is drawn from.
bool looksAlike(const AppGlyph& a, const AppGlyph& b) {
  return a.size == b.size && a.corner == b.corner && a.ping.appId == b.ping.appId &&
         a.ping.appLabel == b.ping.appLabel && a.ping.icon == b.ping.icon && a.ping.color == b.ping.color;
}

}  // namespace

QImage AppGlyph::image(double pixelsPerPoint) const {
  const int pixels = std::max(1, qRound(size * pixelsPerPoint));
  QImage tile = newPicture({pixels, pixels}, QImage::Format_ARGB32_Premultiplied);
  tile.fill(Qt::transparent);
  QPainter painter(&tile);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);

  const std::optional<QImage> picture = BundleImage::named(ping.appId);
  if (picture && ping.appId == u"tiktok"_s) {
    painter.fillRect(tile.rect(), Qt::black);
    drawFitted(painter, *picture, pixels, standingInset * pixels);
  } else if (picture) {
    painter.drawImage(0, 0, photoFill(*picture, tile.size()));
  } else {
    painter.save();
    painter.scale(pixels / size, pixels / size);
    drawFallback(painter, ping, size);
    painter.restore();
  }

  // A clip's edge would be jagged: the corners are cut by covering a mask instead.
  QImage mask = newPicture(tile.size(), QImage::Format_ARGB32_Premultiplied);
  mask.fill(Qt::transparent);
  {
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.fillPath(continuousRoundedRect(QRectF(tile.rect()), corner * pixels / size), Qt::black);
  }
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(0, 0, mask);
  return tile;
}

QImage AppGlyphCache::image(const AppGlyph& glyph, double pixelsPerPoint) {
  const auto known = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.pixelsPerPoint == pixelsPerPoint && looksAlike(entry.glyph, glyph);
  });
  if (known != entries_.end()) {
    std::rotate(known, known + 1, entries_.end());
  } else {
    if (entries_.size() >= mostCachedTiles) entries_.removeFirst();
    entries_.append({glyph, pixelsPerPoint, glyph.image(pixelsPerPoint)});
  }
  return entries_.last().image;
}

void AppGlyphCache::paint(QPainter& painter, const AppGlyph& glyph, const QPointF& topLeft) {
  const QTransform toDevice = painter.deviceTransform();
  const double pixelsPerPoint = std::sqrt(std::abs(toDevice.determinant()));
  const QImage tile = image(glyph, pixelsPerPoint);
  const QPointF corner = toDevice.map(topLeft);
  painter.save();
  // Undoing the device's own scale as well leaves whole pixels.
  const QTransform fromDevice = toDevice.inverted() * painter.worldTransform();
  painter.setWorldTransform(fromDevice);
  painter.drawImage(QPointF(std::round(corner.x()), std::round(corner.y())), tile);
  painter.restore();
}

}  // namespace brisklet
