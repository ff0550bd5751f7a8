#pragma once

#include <QPainterPath>
#include <QRectF>

namespace brisklet {

/// A rectangle whose corners are continuous curves: the curvature rises from nothing along the straight edge,
/// so that no seam shows. A corner takes about 1.53 radii of each side; where a side is too short for that
/// the curve tightens, down to a capsule or a circle.
[[nodiscard]] QPainterPath continuousRoundedRect(const QRectF& rect, double radius);

}  // namespace brisklet
