#include "drawing/pictures.h"

#include <QTransform>
#include <algorithm>
#include <cmath>

namespace brisklet {

void setUpPainter(QPainter& painter, double pixelsPerPoint) {
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
  painter.scale(pixelsPerPoint, pixelsPerPoint);
}

QImage painted(const QSize& pixels, double pixelsPerPoint, const Paint& paint) {
  QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  setUpPainter(painter, pixelsPerPoint);
  paint(painter);
  return image;
}

QRectF inkBox(const QSizeF& room, int leastAlpha, const Paint& paint) {
  constexpr double finer = 4;
  const QImage image = painted((room * finer).toSize(), finer, paint);
  int left = image.width(), right = -1, top = image.height(), bottom = -1;
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(row[x]) < leastAlpha) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = y;
    }
  }
  if (right < 0) return {};
  return {left / finer, top / finer, (right + 1 - left) / finer, (bottom + 1 - top) / finer};
}

QImage overBlack(QImage image) {
  if (!image.hasAlphaChannel()) {
    image.convertTo(QImage::Format_RGB32);
    return image;
  }
  // With premultiplied colours, only the alpha changes.
  image.convertTo(QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < image.height(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    std::for_each(row, row + image.width(), [](QRgb& pixel) { pixel |= 0xff000000U; });
  }
  image.reinterpretAsFormat(QImage::Format_RGB32);
  return image;
}

double deviceScale(const QPainter& painter) {
  return std::sqrt(std::abs(painter.deviceTransform().determinant()));
}

void drawOnPixels(QPainter& painter, const QPoint& devicePixel, const QImage& picture) {
  painter.save();
  // Undoing the device's own scale as well leaves whole pixels. Not a reset, which would keep a widget's
  // offset within its window.
  painter.setWorldTransform(painter.deviceTransform().inverted() * painter.worldTransform());
  painter.drawImage(devicePixel, picture);
  painter.restore();
}

}  // namespace brisklet
