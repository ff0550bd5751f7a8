#pragma once

#include "model/ping.h"

#include <QCache>
#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QStringList>

namespace brisklet {

/// The app icon of a ping: a square tile with the app's picture, or a drawn one where there is none.
struct AppGlyph {
  Ping ping;
  double size = 0;    // points
  double corner = 0;  // points

  /// The tile at a scale, ARGB32 premultiplied; its sides are whole pixels.
  [[nodiscard]] QImage image(double pixelsPerPoint) const;
};

/// Keeps the tiles last drawn.
class AppGlyphCache {
 public:
  [[nodiscard]] QImage image(const AppGlyph& glyph, double pixelsPerPoint);

  /// Draws the tile with its upper left corner at `topLeft`, on the device's pixels.
  void paint(QPainter& painter, const AppGlyph& glyph, const QPointF& topLeft);

 private:
  QCache<QStringList, QImage> tiles_{64};
};

}  // namespace brisklet
