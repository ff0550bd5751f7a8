#include "studio/controls/control_painting.h"

#include "drawing/continuous_corners.h"
#include "studio/controls/palette.h"

#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace brisklet {

namespace {

/// Pixels a point.
double scaleOf(const QPainter& painter) {
  return painter.deviceTransform().m11();
}

/// A width in points that is whole pixels, at least one.
double wholePixels(const QPainter& painter, double width) {
  const double scale = scaleOf(painter);
  return std::max(1.0, std::round(width * scale)) / scale;
}

QPainterPath inside(const QRectF& rect, double radius, double width) {
  return continuousRoundedRect(rect.adjusted(width, width, -width, -width), std::max(0.0, radius - width));
}

}  // namespace

void setUpPainter(QPainter& painter) {
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
}

QRectF onPixels(const QPainter& painter, const QRectF& rect) {
  const QTransform& toDevice = painter.deviceTransform();
  const QRectF device = toDevice.mapRect(rect);
  const QPointF topLeft(std::round(device.left()), std::round(device.top()));
  const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
  return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

void paintBox(QPainter& painter, const RoundedBox& box, const QBrush& fill) {
  const QRectF rect = onPixels(painter, box.rect);
  if (box.outlineWidth <= 0 || box.outline.alpha() == 0) {
    painter.fillPath(continuousRoundedRect(rect, box.radius), fill);
    return;
  }
  // The fill ends in the middle of the outline: it neither shines through outside nor leaves a seam inside.
  const double width = wholePixels(painter, box.outlineWidth);
  painter.fillPath(inside(rect, box.radius, width / 2), fill);
  paintOutline(painter, box);
}

void paintPicture(QPainter& painter, const RoundedBox& box, const QImage& picture) {
  if (picture.isNull()) return;
  const QRectF rect = onPixels(painter, box.rect);
  const double scale = std::max(rect.width() / picture.width(), rect.height() / picture.height());
  QBrush brush(picture);
  brush.setTransform(QTransform::fromTranslate(rect.center().x(), rect.center().y())
                         .scale(scale, scale)
                         .translate(-picture.width() / 2.0, -picture.height() / 2.0));
  paintBox(painter, box, brush);
}

void paintOutline(QPainter& painter, const RoundedBox& box) {
  const QRectF rect = onPixels(painter, box.rect);
  QPainterPath ring = continuousRoundedRect(rect, box.radius);
  ring.addPath(inside(rect, box.radius, wholePixels(painter, box.outlineWidth)));
  ring.setFillRule(Qt::OddEvenFill);
  painter.fillPath(ring, box.outline);
}

void paintSelectionGap(QPainter& painter, const RoundedBox& box) {
  const double width = box.outlineWidth;
  paintOutline(painter,
               {box.rect.adjusted(width, width, -width, -width), box.radius - width, Studio::white, 1});
}

void paintRule(QPainter& painter, const QRectF& rect, const QColor& color) {
  QRectF line = onPixels(painter, rect);
  line.setTop(line.bottom() - wholePixels(painter, rect.height()));
  painter.fillRect(line, color);
}

double centredBaseline(const QPainter& painter, double top, double height, const TextStyle& style) {
  const QTransform& toDevice = painter.deviceTransform();
  const double baseline = top + (height - lineHeight(style)) / 2 + lineAscent(style);
  const double pixels = std::round(baseline * toDevice.m22() + toDevice.dy());
  return (pixels - toDevice.dy()) / toDevice.m22();
}

int rowHeight(const TextStyle& style) {
  return static_cast<int>(std::lround(lineHeight(style)));
}

}  // namespace brisklet
