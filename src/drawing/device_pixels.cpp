#include "drawing/device_pixels.h"

#include <cmath>

namespace brisklet {

void drawOnDevicePixels(QPainter& painter, const QPointF& corner, const QImage& picture) {
  painter.save();
  // Not a reset, which would keep a widget's offset within its window.
  painter.setWorldTransform(painter.deviceTransform().inverted() * painter.worldTransform());
  painter.drawImage(QPointF(std::round(corner.x()), std::round(corner.y())), picture);
  painter.restore();
}

}  // namespace brisklet
