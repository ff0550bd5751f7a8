#include "studio/stage_backdrop.h"

#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "lockscreen/lock_screen_layout.h"
#include "studio/controls/palette.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace brisklet {

namespace {

using namespace StageMetrics;

/// The shadow is made on a grid of cells of this many points.
constexpr double cell = 3;

/// The shadow's darkness, 0 to 1, in cells from the stage's upper left corner.
FloatPlane shadowPlane(const QSizeF& stage) {
  QImage shape(static_cast<int>(std::ceil(stage.width() / cell)) + 1,
               static_cast<int>(std::ceil(stage.height() / cell)) + 1, QImage::Format_Grayscale8);
  shape.fill(Qt::black);
  QPainter painter(&shape);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1 / cell, 1 / cell);
  painter.fillPath(continuousRoundedRect(phoneRect(stage).translated(0, shadowOffset),
                                         LockScreenMetrics::liveCornerRadius * phoneScale(stage)),
                   Qt::white);
  painter.end();

  FloatPlane plane(shape.width(), shape.height());
  for (int y = 0; y < shape.height(); ++y) {
    const uchar* in = shape.constScanLine(y);
    std::transform(in, in + shape.width(), plane.row(y),
                   [](uchar value) { return static_cast<float>(shadowOpacity * value / 255); });
  }
  // A blur radius is two standard deviations.
  return blurred(plane, shadowBlur / 2 / cell);
}

/// The opacity of the glow at a distance from the middle, in points.
float glowAt(double distance) {
  const double share = (glowEnd - std::clamp(distance, glowStart, glowEnd)) / (glowEnd - glowStart);
  return static_cast<float>(glowOpacity * share);
}

}  // namespace

double phoneScale(const QSizeF& stage) {
  const auto fitting = [](double room, double size) { return std::max((room - margin) / size, leastScale); };
  return std::min(fitting(stage.width(), LockScreenMetrics::canvasWidth),
                  fitting(stage.height(), LockScreenMetrics::canvasHeight));
}

QRectF phoneRect(const QSizeF& stage) {
  QRectF phone(QPointF(),
               QSizeF(LockScreenMetrics::canvasWidth, LockScreenMetrics::canvasHeight) * phoneScale(stage));
  phone.moveCenter({stage.width() / 2, stage.height() / 2});
  return phone;
}

QImage stageBackdrop(const QSize& pixels, double pixelsPerPoint) {
  const QSizeF stage = QSizeF(pixels) / pixelsPerPoint;
  const FloatPlane shadow = shadowPlane(stage);
  const PlaneEnlarger enlarger(shadow.width, pixels.width(), 1 / (cell * pixelsPerPoint));
  std::vector<float> darkness(static_cast<std::size_t>(pixels.width()));

  const std::array<float, 3> base{Studio::stage.redF() * 255, Studio::stage.greenF() * 255,
                                  Studio::stage.blueF() * 255};
  QImage backdrop(pixels, QImage::Format_RGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    enlarger.row(shadow, (y + 0.5) / (cell * pixelsPerPoint), darkness);
    const double fromMiddleY = (y + 0.5) / pixelsPerPoint - stage.height() / 2;
    QRgb* out = reinterpret_cast<QRgb*>(backdrop.scanLine(y));
    for (int x = 0; x < pixels.width(); ++x) {
      const double fromMiddleX = (x + 0.5) / pixelsPerPoint - stage.width() / 2;
      const float glow = glowAt(std::sqrt(fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY));
      const float light = 1 - darkness[static_cast<std::size_t>(x)];
      const float threshold = ditherAt(x, y);
      const auto level = [&](float value) {
        return static_cast<int>((value + (255 - value) * glow) * light + threshold);
      };
      out[x] = qRgb(level(base[0]), level(base[1]), level(base[2]));
    }
  }
  return backdrop;
}

}  // namespace brisklet
