#pragma once

#include <QImage>
#include <QRectF>
#include <QSize>

namespace brisklet {

/// The part `source` of a picture, scaled to `pixels`: RGB32, or ARGB32 premultiplied where the picture has
/// an alpha channel. Reduced, it keeps nothing finer than its pixels, which would show as rings; enlarged, it
/// becomes the smoother, the larger it gets. Edges continue outwards. Dithered.
[[nodiscard]] QImage resampled(const QImage& picture, const QRectF& source, const QSize& pixels);

}  // namespace brisklet
