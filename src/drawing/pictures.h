#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRectF>
#include <QSize>
#include <functional>

namespace brisklet {

using Paint = std::function<void(QPainter&)>;

/// Makes the painter draw smoothly, in points.
void setUpPainter(QPainter& painter, double pixelsPerPoint);

/// What `paint` draws in points on a transparent picture of this size. ARGB32 premultiplied.
[[nodiscard]] QImage painted(const QSize& pixels, double pixelsPerPoint, const Paint& paint);

/// The box of what `paint` draws within `room` at this alpha (1 to 255) or more, in points, to a quarter.
[[nodiscard]] QRectF inkBox(const QSizeF& room, int leastAlpha, const Paint& paint);

/// The picture with black behind what is transparent, RGB32.
[[nodiscard]] QImage overBlack(QImage image);

/// Pixels of the device in a unit of the painter.
[[nodiscard]] double deviceScale(const QPainter& painter);

/// Draws a picture pixel by pixel, its upper left corner on this pixel of the device.
void drawOnPixels(QPainter& painter, const QPoint& devicePixel, const QImage& picture);

}  // namespace brisklet
