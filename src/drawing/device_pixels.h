#pragma once

#include <QImage>
#include <QPainter>
#include <QPointF>

namespace brisklet {

/// Draws a picture pixel by pixel, whatever the painter's transform is: with its upper left corner on the
/// pixel of the device that is nearest to `corner`, which is in the device's coordinates.
void drawOnDevicePixels(QPainter& painter, const QPointF& corner, const QImage& picture);

}  // namespace brisklet
