#include "studio/custom_wallpaper_chip.h"

#include <QPainter>

#include "platform/image_decoder.h"
#include "studio/chip_preview.h"
#include "studio/control_painting.h"
#include "studio/plus_tile.h"
#include "studio/wallpaper_chip.h"

namespace brisklet {

CustomWallpaperChip::CustomWallpaperChip(QWidget* parent) : Chip(WallpaperChip::radius, parent) {
  setToolTip(tr("Upload photo"));
  setAccessibleName(tr("Upload lock screen photo"));
}

void CustomWallpaperChip::setPhoto(const QString& path) {
  if (path == path_) return;
  path_ = path;
  const auto photo = path.isEmpty() ? std::nullopt : decodeImageFile(path);
  preview_ = photo ? chipPreview(*photo) : QImage();
  update();
}

void CustomWallpaperChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const RoundedBox box{rect(), cornerRadius(), outline(), outlineWidth()};
  if (preview_.isNull()) {
    paintPlusTile(painter, box);
  } else {
    paintPreview(painter, box, preview_);
    if (isSelected()) paintSelectionGap(painter, box);
  }
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = cornerRadius()}, veil());
}

}  // namespace brisklet
