#include "studio/wallpaper_chip.h"

#include "lockscreen/bundle_image.h"
#include "model/color.h"
#include "studio/chip_preview.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

QColor substituteColor() {
  const Color color = Color::fromHex(u"#9bb4be"_s);
  return Studio::srgb(color.red, color.green, color.blue);
}

}  // namespace

WallpaperChip::WallpaperChip(const QString& id, const QString& label, QWidget* parent)
    : Chip(radius, parent), id_(id) {
  setLabel(label);
  if (const auto picture = BundleImage::named(id)) preview_ = chipPreview(*picture);
}

void WallpaperChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const RoundedBox box{rect(), radius, outline(), outlineWidth()};
  if (preview_.isNull())
    paintBox(painter, box, substituteColor());
  else
    paintPreview(painter, box, preview_);
  if (isSelected()) paintSelectionGap(painter, box);
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = radius}, veil());
}

}  // namespace brisklet
