#include "studio/chip_preview.h"

#include "lockscreen/wallpaper.h"
#include "studio/controls/palette.h"

namespace brisklet {

namespace {

/// The largest chip at three pixels a point, and some.
constexpr int previewPixels = 192;
constexpr double gapWidth = 1;  // pt

}  // namespace

QImage chipPreview(const QImage& picture) {
  return photoFill(picture, {previewPixels, previewPixels});
}

void paintPreview(QPainter& painter, const RoundedBox& box, const QImage& preview) {
  const QRectF pixels = painter.deviceTransform().mapRect(onPixels(painter, box.rect));
  paintPicture(painter, box, photoFill(preview, pixels.size().toSize()));
}

void paintSelectionGap(QPainter& painter, const RoundedBox& box) {
  const double width = box.outlineWidth;
  paintOutline(painter, {box.rect.adjusted(width, width, -width, -width), box.radius - width, Studio::white,
                         gapWidth});
}

}  // namespace brisklet
