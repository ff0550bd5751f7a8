#include "studio/app_chip.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

namespace brisklet {

AppChip::AppChip(const AppPreset& preset, QWidget* parent) : Chip(radius, parent), preset_(preset) {
  setLabel(preset.label);
}

void AppChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  Ping ping;
  ping.appId = preset_.id;
  ping.appLabel = preset_.label;
  ping.icon = preset_.icon;
  ping.color = preset_.color;
  const QPointF topLeft = QRectF(rect()).center() - QPointF(glyphSize / 2, glyphSize / 2);
  glyphs_.paint(painter, {ping, glyphSize, radius}, topLeft);

  const RoundedBox box{rect(), radius, Studio::ink, 2};
  if (isSelected()) {
    paintOutline(painter, box);
    paintSelectionGap(painter, box);
  }
  paintBox(painter, {.rect = rect(), .radius = radius}, veil());
}

}  // namespace brisklet
