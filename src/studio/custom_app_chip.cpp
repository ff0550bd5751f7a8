#include "studio/custom_app_chip.h"

#include <QPainter>

#include "studio/app_chip.h"
#include "studio/plus_tile.h"

namespace brisklet {

CustomAppChip::CustomAppChip(QWidget* parent) : Chip(AppChip::radius, parent) {
  setLabel(tr("Custom app"));
}

void CustomAppChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  paintPlusTile(painter, {rect(), cornerRadius(), outline(), outlineWidth()});
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = cornerRadius()}, veil());
}

}  // namespace brisklet
