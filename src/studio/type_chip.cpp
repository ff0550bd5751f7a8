#include "studio/type_chip.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

namespace brisklet {

namespace {

constexpr TextStyle labelStyle{11, FontWeight::Medium};

}  // namespace

TypeChip::TypeChip(const PingType& type, QWidget* parent) : Chip(radius, parent), type_(type) {
  setText(type.label);
}

void TypeChip::resizeEvent(QResizeEvent*) {
  line_ = TextLine(type_.label, labelStyle, width() - 2 * margin);
}

void TypeChip::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const RoundedBox box{rect(), radius, outline(), 1};
  paintBox(painter, box, isSelected() ? Studio::ink : Studio::white);
  if (isDown() && !isSelected()) paintBox(painter, {.rect = rect(), .radius = radius}, veil());
  const double baseline = centredBaseline(painter, 0, height(), labelStyle);
  line_.draw(painter, {(width() - line_.width()) / 2, baseline}, isSelected() ? Studio::white : Studio::ink);
}

}  // namespace brisklet
