#include "lockscreen/lock_screen_scenery.h"

#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "drawing/pictures.h"
#include "drawing/symbol_image.h"
#include "lockscreen/notification_card.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

namespace brisklet {
namespace {

namespace Metrics = LockScreenMetrics;
namespace Styles = LockScreenStyles;

/// A shadow of the clock's time. The blur radius of a shadow is two standard deviations.
struct Shadow {
  float opacity;
  double blur;     // standard deviation, points
  double offsetY;  // points
};
constexpr Shadow glow{0.35F, 9, 4}, drop{0.18F, 12, 10};
/// Points around the time that the shadows reach.
constexpr double shadowsReach = 3 * (glow.blur + drop.blur) + drop.offsetY;

QColor white(double opacity) {
  return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

/// The plane moved down by `cells`, nothing coming in above.
FloatPlane lowered(const FloatPlane& plane, int cells) {
  FloatPlane moved(plane.width, plane.height);
  for (int y = cells; y < plane.height; ++y) std::copy_n(plane.row(y - cells), plane.width, moved.row(y));
  return moved;
}

/// How far right of the middle of its lines the middle of the time's ink lies, in points. What stands beside
/// the ink of a digit differs from digit to digit, and at the clock's size that would show.
double inkOffset(const TextBlock& time, const QRectF& place) {
  const QSizeF room(Metrics::canvasWidth, std::clamp(std::ceil(place.height()), 1.0, Metrics::canvasHeight));
  const QRectF ink = inkBox(room, 128, [&](QPainter& painter) {
    time.draw(painter, {Metrics::canvasWidth / 2, 0}, Qt::white);
  });
  return ink.isEmpty() ? 0 : ink.center().x() - Metrics::canvasWidth / 2;
}

/// Paints the glow and the drop shadow of the time: the glow lies on the shadow that text and glow cast
/// together. Both are computed on a grid of a point a cell.
void paintTimeShadows(QImage& target, const TextBlock& time, const QRectF& place, double centreX,
                      double pixelsPerPoint) {
  const int top = std::max(0, static_cast<int>(place.top() - shadowsReach));
  const int bottom =
      std::min(static_cast<int>(Metrics::canvasHeight), static_cast<int>(place.bottom() + shadowsReach));
  const int columns = static_cast<int>(Metrics::canvasWidth), rows = bottom - top;
  if (rows <= 0) return;

  constexpr int finer = 4;
  const QImage coarse = painted(QSize(columns, rows) * finer, finer, [&](QPainter& painter) {
                          time.draw(painter, {centreX, place.top() - top}, white(Metrics::timeOpacity));
                        }).scaled(columns, rows, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);

  FloatPlane glowing = alphaOf(coarse);
  FloatPlane light = lowered(blurred(glowing, glow.blur), static_cast<int>(glow.offsetY));
  for (std::size_t i = 0; i < light.samples.size(); ++i) {
    light.samples[i] *= glow.opacity;
    glowing.samples[i] += light.samples[i] * (1 - glowing.samples[i]);
  }
  FloatPlane dark = lowered(blurred(glowing, drop.blur), static_cast<int>(drop.offsetY));
  for (float& sample : dark.samples) sample *= drop.opacity;

  const int width = target.width();
  const PlaneEnlarger enlarger(columns, width, static_cast<double>(columns) / width);
  std::vector<float> lightRow(static_cast<std::size_t>(width), 0.0F),
      darkRow(static_cast<std::size_t>(width), 0.0F);
  const int firstRow = std::max(0, static_cast<int>(top * pixelsPerPoint));
  const int lastRow = std::min(target.height(), static_cast<int>(std::ceil(bottom * pixelsPerPoint)));
  for (int y = firstRow; y < lastRow; ++y) {
    const double cell = (y + 0.5) / pixelsPerPoint - top;
    enlarger.row(light, cell, lightRow);
    enlarger.row(dark, cell, darkRow);
    auto* line = reinterpret_cast<QRgb*>(target.scanLine(y));
    for (int x = 0; x < width; ++x) {
      const float lit = lightRow[static_cast<std::size_t>(x)];
      const float keep = (1 - lit) * (1 - darkRow[static_cast<std::size_t>(x)]);
      const float added = 255 * lit + ditherAt(x, y);
      const auto level = [&](int value) {
        return std::min(255, static_cast<int>(static_cast<float>(value) * keep + added));
      };
      line[x] = qRgb(level(qRed(line[x])), level(qGreen(line[x])), level(qBlue(line[x])));
    }
  }
}

}  // namespace

void LockScreenScenery::update(const SequenceDocument& document, const QSize& pixels, double pixelsPerPoint,
                               Rendering rendering) {
  // A movie has one wallpaper, whatever happens to the photo while it is made.
  const QImage& wallpaper = wallpaperSource_.filled(
      document, pixels, rendering == Rendering::Live ? PhotoChanges::Followed : PhotoChanges::Ignored);
  const Scale scale{pixels, pixelsPerPoint, rendering};
  rendering_ = rendering;
  const auto glassOf = [&](const QSizeF& points, double radius) {
    const QSize size = (points * pixelsPerPoint).toSize().expandedTo({1, 1});
    return std::make_unique<const LockGlass>(size, radius, pixelsPerPoint, rendering);
  };
  glass_.get(scale, [&] {
    return Glass{glassOf({Metrics::cardWidth, Metrics::cardHeight}, CardMetrics::cornerRadius),
                 glassOf({Metrics::orbSize, Metrics::orbSize}, Metrics::orbSize / 2)};
  });
  backdrop_.get({scale, wallpaper.cacheKey()},
                [&] { return glassBackdrop(wallpaper, pixelsPerPoint, rendering); });
  picture_.get({scale, wallpaper.cacheKey(), document.dateLabel, document.timeLabel}, [&] {
    layout_ = lockScreenLayout(document, 0);
    QImage picture = wallpaper;
    paintBack(picture, document, pixelsPerPoint);
    paintFront(picture, Behind::Wallpaper, pixelsPerPoint);
    return picture;
  });
}

void LockScreenScenery::paintBack(QImage& target, const SequenceDocument& document,
                                  double pixelsPerPoint) const {
  const TextBlock time = labelLines(document.timeLabel, Styles::time);
  const double timeCentre = layout_.time.center().x() - inkOffset(time, layout_.time);
  paintTimeShadows(target, time, layout_.time, timeCentre, pixelsPerPoint);
  QPainter painter(&target);
  setUpPainter(painter, pixelsPerPoint);
  TextLine(document.timeLabel, Styles::status, layout_.statusTimeRoom)
      .draw(painter, layout_.statusTime, white(1));
  for (const PlacedSymbol& symbol : layout_.statusSymbols)
    drawSymbol(painter, symbol.name, Metrics::statusSymbolSize, symbol.rect.center(), white(1));
  labelLines(document.dateLabel, Styles::date)
      .draw(painter, {layout_.date.center().x(), layout_.date.top()}, white(Metrics::dateOpacity));
  time.draw(painter, {timeCentre, layout_.time.top()}, white(Metrics::timeOpacity));
}

void LockScreenScenery::paintFront(QImage& target, Behind behind, double pixelsPerPoint) const {
  for (const PlacedSymbol& orb : {layout_.torchOrb, layout_.cameraOrb})
    paintOrb(target, orb, behind, pixelsPerPoint);
  QPainter painter(&target);
  setUpPainter(painter, pixelsPerPoint);
  painter.fillPath(continuousRoundedRect(layout_.homeIndicator, Metrics::indicatorHeight / 2),
                   white(Metrics::indicatorOpacity));
}

void LockScreenScenery::paintOrb(QImage& target, const PlacedSymbol& orb, Behind behind,
                                 double pixelsPerPoint) const {
  const LockGlass& glass = *glass_.last().orb;
  const QPoint corner = (orb.rect.topLeft() * pixelsPerPoint).toPoint();
  if (behind == Behind::Wallpaper) {
    const GlassPlate plate{static_cast<double>(corner.y())};
    glass.paint(target, backdrop(), corner.x(), {&plate, 1});
  } else {
    // What is around it is enough to see through it.
    const QRect around = QRect(corner, glass.plateSize())
                             .adjusted(-glass.reach(), -glass.reach(), glass.reach(), glass.reach()) &
                         target.rect();
    QImage part = target.copy(around);
    const GlassPlate plate{static_cast<double>(corner.y() - around.top())};
    glass.paint(part, glassBackdrop(part, pixelsPerPoint, rendering_), corner.x() - around.left(),
                {&plate, 1});
    QPainter(&target).drawImage(around.topLeft(), part);
  }
  QPainter painter(&target);
  setUpPainter(painter, pixelsPerPoint);
  drawSymbol(painter, orb.name, Metrics::orbSymbolSize, orb.rect.center(), white(1));
}

}  // namespace brisklet
