#include "lockscreen/page.h"

#include "drawing/continuous_corners.h"
#include "drawing/float_plane.h"
#include "drawing/pictures.h"
#include "lockscreen/lock_screen_layout.h"
#include "lockscreen/wallpaper.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace brisklet {
namespace {

namespace Metrics = LockScreenMetrics;

constexpr double heightShare = 0.92, widthShare = 0.86;

/// Blur and shadow are soft: they are computed on a grid of about so many cells along the shorter side.
constexpr double cellsOnShorterSide = 200;
/// Standard deviation, as a share of the shorter side.
constexpr double blur = 0.05;
/// What is left of the wallpaper's light, and its saturation.
constexpr float light = 0.62F, saturation = 1.15F;

/// The phone's shadow. Lengths in the phone's points.
constexpr float shadowOpacity = 0.55F;
constexpr double shadowBlur = 26, shadowOffset = 14;

/// Around a corner in points: where the outline is no straight line.
constexpr double cornerReach = 2 * Metrics::liveCornerRadius;

/// How much of each cell the phone's shadow takes.
FloatPlane shadowOf(const QRectF& phone, double pixelsPerPoint, const QSize& cells, double cell) {
  const QRectF place = phone.translated(0, shadowOffset * pixelsPerPoint);
  const QImage outline = painted(cells, 1 / cell, [&](QPainter& painter) {
    painter.fillPath(continuousRoundedRect(place, Metrics::liveCornerRadius * pixelsPerPoint), Qt::black);
  });
  return blurred(alphaOf(outline), shadowBlur * pixelsPerPoint / cell);
}

QImage emptyPage(const QSize& size, const QImage& wallpaper, const PageLayout& layout) {
  const double cell = std::max(1.0, std::min(size.width(), size.height()) / cellsOnShorterSide);
  const QSize cells(static_cast<int>(std::ceil(size.width() / cell)),
                    static_cast<int>(std::ceil(size.height() / cell)));
  const FloatPlane shadow = shadowOf(layout.phone, layout.pixelsPerPoint, cells, cell);

  ColorPlanes planes = colorsOf(overBlack(photoFill(wallpaper, cells)));
  for (FloatPlane& plane : planes) plane = blurred(plane, blur * cellsOnShorterSide);
  for (std::size_t i = 0; i < shadow.samples.size(); ++i) {
    const float luma =
        0.2126F * planes[0].samples[i] + 0.7152F * planes[1].samples[i] + 0.0722F * planes[2].samples[i];
    const float lit = light * (1 - shadowOpacity * shadow.samples[i]);
    for (FloatPlane& plane : planes) plane.samples[i] = lit * (luma + saturation * (plane.samples[i] - luma));
  }
  return enlarged(planes, size);
}

}  // namespace

PageLayout::PageLayout(const QSize& page)
    : pixelsPerPoint(std::min(heightShare * page.height() / Metrics::canvasHeight,
                              widthShare * page.width() / Metrics::canvasWidth)) {
  phone.setSize(
      {qRound(Metrics::canvasWidth * pixelsPerPoint), qRound(Metrics::canvasHeight * pixelsPerPoint)});
  phone.moveTopLeft({(page.width() - phone.width()) / 2, (page.height() - phone.height()) / 2});
}

Page::Page(const QSize& size, const QImage& wallpaper)
    : layout_(size), empty_(emptyPage(size, wallpaper, layout_)) {
  const QRect& phone = layout_.phone;
  const int side =
      std::min(static_cast<int>(std::ceil(cornerReach * layout_.pixelsPerPoint)), phone.width() / 2);
  const QPainterPath outline =
      continuousRoundedRect(phone, Metrics::liveCornerRadius * layout_.pixelsPerPoint);
  const int right = phone.right() + 1 - side, bottom = phone.bottom() + 1 - side;
  const std::array places{phone.topLeft(), QPoint(right, phone.top()), QPoint(phone.left(), bottom),
                          QPoint(right, bottom)};
  for (std::size_t i = 0; i < places.size(); ++i) {
    QImage picture = empty_.copy(QRect(places[i], QSize(side, side)));
    picture.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);  // every pixel is opaque up to here
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.translate(-places[i]);
    painter.fillPath(outline, Qt::black);
    painter.end();
    corners_[i] = {places[i], picture};
  }
}

QImage Page::with(const QImage& lockScreen) const {
  Q_ASSERT(lockScreen.size() == layout_.phone.size());
  const QRect& phone = layout_.phone;
  QImage page = empty_.copy();
  for (int y = 0; y < phone.height(); ++y)
    std::memcpy(reinterpret_cast<QRgb*>(page.scanLine(phone.top() + y)) + phone.left(),
                lockScreen.constScanLine(y), static_cast<std::size_t>(phone.width()) * sizeof(QRgb));
  QPainter painter(&page);
  for (const Corner& corner : corners_) painter.drawImage(corner.place, corner.picture);
  return page;
}

}  // namespace brisklet
