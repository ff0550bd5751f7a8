#include "drawing/continuous_corners.h"

#include <QPointF>
#include <algorithm>
#include <array>
#include <cmath>

namespace brisklet {

namespace {

/// How far a corner reaches along a side that is long enough, in radii.
constexpr double fullReach = 1.528665;

/// The control points of a corner as a cubic spline with knots 0 0 0 0 1 3 4 4 4 4, in radii from the corner
/// of the rectangle, first half (the second is its mirror image on the diagonal). Such a spline has a
/// continuous curvature whatever its control points are, so that the two shapes below can be blended freely,
/// and each half by itself.
using HalfCorner = std::array<QPointF, 3>;

/// The curve of the least change of curvature that starts at the full reach without curvature and passes the
/// diagonal where the circle does: its curvature rises to 1.22 in the middle.
constexpr HalfCorner blended{QPointF(fullReach, 0), QPointF(1.2265, 0), QPointF(0.505697, 0)};

/// The quarter circle, within 0.000006 radii.
constexpr HalfCorner circular{QPointF(1, 0), QPointF(0.86264984, 0), QPointF(0.46648828, 0.08469879)};

HalfCorner halfCorner(double sideLength, double radius) {
  const double reach = std::min(fullReach, sideLength / 2 / radius);
  const double amount = std::max(0.0, (reach - 1) / (fullReach - 1));
  HalfCorner half;
  for (std::size_t i = 0; i < half.size(); ++i)
    half[i] = (circular[i] + (blended[i] - circular[i]) * amount) * radius;
  half[0].setX(std::min(half[0].x(), sideLength / 2));
  return half;
}

QPointF between(const QPointF& a, const QPointF& b, double share) {
  return a + (b - a) * share;
}

/// Draws the spline with these control points, which starts where the path is.
void appendSpline(QPainterPath& path, const std::array<QPointF, 6>& d) {
  const QPointF a = between(d[1], d[2], 1.0 / 3);
  const QPointF b = between(d[2], d[3], 1.0 / 4);
  const QPointF c = between(d[2], d[3], 3.0 / 4);
  const QPointF e = between(d[3], d[4], 2.0 / 3);
  path.cubicTo(d[1], a, between(a, b, 1.0 / 3));
  path.cubicTo(b, c, between(c, e, 2.0 / 3));
  path.cubicTo(e, d[4], d[5]);
}

}  // namespace

QPainterPath continuousRoundedRect(const QRectF& rect, double radius) {
  QPainterPath path;
  const QRectF box = rect.normalized();
  const double r = std::min({radius, box.width() / 2, box.height() / 2});
  if (!(r > 0)) {
    path.addRect(box);
    return path;
  }

  const HalfCorner across = halfCorner(box.width(), r);
  const HalfCorner down = halfCorner(box.height(), r);
  // Clockwise from the top edge; every corner is left towards the inside along both of its sides.
  const auto corner = [&](const QPointF& at, double toInsideX, double toInsideY, bool startsAcross) {
    std::array<QPointF, 6> points;
    for (std::size_t i = 0; i < 3; ++i) {
      points[i] = at + QPointF(across[i].x() * toInsideX, across[i].y() * toInsideY);
      points[5 - i] = at + QPointF(down[i].y() * toInsideX, down[i].x() * toInsideY);
    }
    if (!startsAcross) std::reverse(points.begin(), points.end());
    if (path.elementCount() == 0)
      path.moveTo(points[0]);
    else
      path.lineTo(points[0]);
    appendSpline(path, points);
  };
  corner(box.topRight(), -1, 1, true);
  corner(box.bottomRight(), -1, -1, false);
  corner(box.bottomLeft(), 1, -1, true);
  corner(box.topLeft(), 1, 1, false);
  path.closeSubpath();
  return path;
}

}  // namespace brisklet
