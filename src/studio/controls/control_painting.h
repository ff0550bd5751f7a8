#pragma once

#include "drawing/text_line.h"

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRectF>

namespace brisklet {

// What the studio's controls are painted with. Shapes stand on whole pixels of the screen whatever its scale,
// lines are whole pixels wide, and everything lies within the rectangle given. In points.

/// Turns on what every control is painted with.
void setUpPainter(QPainter& painter);

/// Moves the edges of a rectangle to the nearest pixels.
[[nodiscard]] QRectF onPixels(const QPainter& painter, const QRectF& rect);

/// A rectangle with continuous corners, filled, within an outline of its own shape.
struct RoundedBox {
  QRectF rect;
  double radius = 0;
  QColor outline = Qt::transparent;
  double outlineWidth = 0;
};
void paintBox(QPainter& painter, const RoundedBox& box, const QBrush& fill);

/// The same with a picture, which fills the rectangle: it is scaled uniformly, centred and cut off.
void paintPicture(QPainter& painter, const RoundedBox& box, const QImage& picture);

/// The outline alone.
void paintOutline(QPainter& painter, const RoundedBox& box);

/// A white hairline within a selected tile's outline, so that the outline is seen around dark tiles too.
void paintSelectionGap(QPainter& painter, const RoundedBox& box);

/// A horizontal line: as thick as the rectangle is high, in whole pixels, and with its lower edge.
void paintRule(QPainter& painter, const QRectF& rect, const QColor& color);

/// Where the text of this style stands when its line is centred between these heights.
[[nodiscard]] double centredBaseline(const QPainter& painter, double top, double height,
                                     const TextStyle& style);

/// The height that a line of text takes in a layout: whole points.
[[nodiscard]] int rowHeight(const TextStyle& style);

}  // namespace brisklet
