#include "lockscreen/lock_screen_scenery.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

#include "lockscreen/float_plane.h"
#include "lockscreen/notification_card.h"
#include "platform/continuous_corners.h"
#include "platform/picture_memory.h"
#include "platform/symbol_image.h"

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
  return QColor::fromRgbF(1, 1, 1, float(opacity));
}

void prepare(QPainter& painter, double pixelsPerPoint) {
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
  painter.scale(pixelsPerPoint, pixelsPerPoint);
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
  constexpr int finer = 4;
  const int height = std::min(int(std::ceil(place.height())), int(Metrics::canvasHeight));
  QImage ink = newPicture({int(Metrics::canvasWidth) * finer, std::max(1, height) * finer},
                          QImage::Format_ARGB32_Premultiplied);
  ink.fill(Qt::transparent);
  {
    QPainter painter(&ink);
    prepare(painter, finer);
    time.draw(painter, {Metrics::canvasWidth / 2, 0}, Qt::white);
  }
  int left = ink.width(), right = -1;
  for (int y = 0; y < ink.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(ink.constScanLine(y));
    const auto isInked = [](QRgb pixel) { return qAlpha(pixel) >= 128; };
    const auto* const first = std::find_if(line, line + left, isInked);
    left = int(first - line);
    for (int x = ink.width() - 1; x > right; --x) {
      if (isInked(line[x])) right = x;
    }
  }
  return right < left ? 0 : (left + right + 1) / (2.0 * finer) - Metrics::canvasWidth / 2;
}

/// Paints the glow and the drop shadow of the time: the glow lies on the shadow that text and glow cast
/// together. Both are computed on a grid of a point a cell.
void paintTimeShadows(QImage& target, const TextBlock& time, const QRectF& place, double centreX,
                      double pixelsPerPoint) {
  const int top = std::max(0, int(place.top() - shadowsReach));
  const int bottom = std::min(int(Metrics::canvasHeight), int(place.bottom() + shadowsReach));
  const int columns = int(Metrics::canvasWidth), rows = bottom - top;
  if (rows <= 0) return;

  constexpr int finer = 4;
  QImage text = newPicture({columns * finer, rows * finer}, QImage::Format_ARGB32_Premultiplied);
  text.fill(Qt::transparent);
  {
    QPainter painter(&text);
    prepare(painter, finer);
    time.draw(painter, {centreX, place.top() - top}, white(Metrics::timeOpacity));
  }
  const QImage coarse = whole(text.scaled(columns, rows, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));

  FloatPlane glowing(columns, rows);
  for (int y = 0; y < rows; ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(coarse.constScanLine(y));
    for (int x = 0; x < columns; ++x) glowing.row(y)[x] = float(qAlpha(line[x])) / 255;
  }
  FloatPlane light = lowered(blurred(glowing, glow.blur), int(glow.offsetY));
  for (std::size_t i = 0; i < light.samples.size(); ++i) {
    light.samples[i] *= glow.opacity;
    glowing.samples[i] += light.samples[i] * (1 - glowing.samples[i]);
  }
  FloatPlane dark = lowered(blurred(glowing, drop.blur), int(drop.offsetY));
  for (float& sample : dark.samples) sample *= drop.opacity;

  const int width = target.width();
  const PlaneEnlarger enlarger(columns, width, double(columns) / width);
  std::vector<float> lightRow(std::size_t(width), 0.0F), darkRow(std::size_t(width), 0.0F);
  const int firstRow = std::max(0, int(top * pixelsPerPoint));
  const int lastRow = std::min(target.height(), int(std::ceil(bottom * pixelsPerPoint)));
  for (int y = firstRow; y < lastRow; ++y) {
    const double cell = (y + 0.5) / pixelsPerPoint - top;
    enlarger.row(light, cell, lightRow);
    enlarger.row(dark, cell, darkRow);
    auto* line = reinterpret_cast<QRgb*>(target.scanLine(y));
    for (int x = 0; x < width; ++x) {
      const float lit = lightRow[std::size_t(x)];
      const float keep = (1 - lit) * (1 - darkRow[std::size_t(x)]);
      const float added = 255 * lit + ditherAt(x, y);
      const auto level = [&](int value) { return std::min(255, int(float(value) * keep + added)); };
      line[x] = qRgb(level(qRed(line[x])), level(qGreen(line[x])), level(qBlue(line[x])));
    }
  }
}

}  // namespace

void LockScreenScenery::update(const SequenceDocument& document, const QSize& pixels, double pixelsPerPoint,
                               CaptureMode mode) {
  // A movie has one wallpaper, whatever happens to the photo while it is made.
  const QImage& wallpaper = wallpaperSource_.filled(
      document, pixels, mode == CaptureMode::Capture ? PhotoChanges::Ignored : PhotoChanges::Followed);
  const bool sameScale = pixels == pixels_ && pixelsPerPoint == pixelsPerPoint_ && mode == mode_;
  const bool sameWallpaper = wallpaper.cacheKey() == wallpaper_.cacheKey();
  const bool sameLabels = document.dateLabel == dateLabel_ && document.timeLabel == timeLabel_;
  if (sameScale && sameWallpaper && sameLabels) return;

  const GlassStyle style = mode == CaptureMode::Capture ? GlassStyle::Material : GlassStyle::Regular;
  pixels_ = pixels;
  pixelsPerPoint_ = pixelsPerPoint;
  mode_ = mode;
  wallpaper_ = wallpaper;
  dateLabel_ = document.dateLabel;
  timeLabel_ = document.timeLabel;
  if (!sameScale) {
    const auto inPixels = [&](double points) { return std::max(1, qRound(points * pixelsPerPoint)); };
    cardGlass_ =
        std::make_unique<LockGlass>(QSize(inPixels(Metrics::cardWidth), inPixels(Metrics::cardHeight)),
                                    CardMetrics::cornerRadius, pixelsPerPoint, style);
    orbGlass_ = std::make_unique<LockGlass>(QSize(inPixels(Metrics::orbSize), inPixels(Metrics::orbSize)),
                                            Metrics::orbSize / 2, pixelsPerPoint, style);
  }
  if (!sameScale || !sameWallpaper) backdrop_ = glassBackdrop(wallpaper_, pixelsPerPoint, style);
  layout_ = lockScreenLayout(document, 0);
  QImage picture = wallpaper_;
  makeWritable(picture);
  paintBack(picture);
  paintFront(picture);
  picture_ = picture;
}

void LockScreenScenery::paintBack(QImage& target) const {
  const TextBlock time = labelLines(timeLabel_, Styles::time);
  const double timeCentre = layout_.time.center().x() - inkOffset(time, layout_.time);
  paintTimeShadows(target, time, layout_.time, timeCentre, pixelsPerPoint_);
  QPainter painter(&target);
  prepare(painter, pixelsPerPoint_);
  TextLine(timeLabel_, Styles::status, layout_.statusTimeRoom).draw(painter, layout_.statusTime, white(1));
  for (const PlacedSymbol& symbol : layout_.statusSymbols)
    drawSymbol(painter, symbol.name, Metrics::statusSymbolSize, symbol.rect.center(), white(1));
  labelLines(dateLabel_, Styles::date)
      .draw(painter, {layout_.date.center().x(), layout_.date.top()}, white(Metrics::dateOpacity));
  time.draw(painter, {timeCentre, layout_.time.top()}, white(Metrics::timeOpacity));
}

void LockScreenScenery::paintFront(QImage& target) const {
  paintOrb(target, layout_.torchOrb);
  paintOrb(target, layout_.cameraOrb);
  QPainter painter(&target);
  prepare(painter, pixelsPerPoint_);
  painter.fillPath(continuousRoundedRect(layout_.homeIndicator, Metrics::indicatorHeight / 2),
                   white(Metrics::indicatorOpacity));
}

void LockScreenScenery::paintOrb(QImage& target, const PlacedSymbol& orb) const {
  const QPoint corner = (orb.rect.topLeft() * pixelsPerPoint_).toPoint();
  const GlassPlate plate{double(corner.y())};
  orbGlass_->paint(target, backdrop_, corner.x(), {&plate, 1});
  QPainter painter(&target);
  prepare(painter, pixelsPerPoint_);
  drawSymbol(painter, orb.name, Metrics::orbSymbolSize, orb.rect.center(), white(1));
}

}  // namespace brisklet
