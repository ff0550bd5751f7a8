#include "studio/custom_chip.h"

#include "drawing/image_decoder.h"
#include "drawing/symbol_image.h"
#include "studio/chip_preview.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr double plusFontSize = 16;  // pt

}  // namespace

CustomChip::CustomChip(double cornerRadius, const QString& label, QWidget* parent)
    : Chip(cornerRadius, parent) {
  setLabel(label);
}

void CustomChip::setPhoto(const QString& path) {
  if (path == path_) return;
  path_ = path;
  const auto photo = path.isEmpty() ? std::nullopt : decodeImageFile(path);
  preview_ = photo ? chipPreview(*photo) : QImage();
  update();
}

void CustomChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const RoundedBox box{rect(), cornerRadius(), outline(), outlineWidth()};
  if (preview_.isNull()) {
    paintBox(painter, box, Studio::white);
    drawSymbol(painter, u"plus"_s, plusFontSize, box.rect.center(), Studio::mute);
  } else {
    paintPreview(painter, box, preview_);
    if (isSelected()) paintSelectionGap(painter, box);
  }
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = cornerRadius()}, veil());
}

}  // namespace brisklet
