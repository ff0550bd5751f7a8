#include "studio/controls/window_button.h"

#include "drawing/symbol_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

namespace brisklet {

namespace {

constexpr double symbolFontSize = 11;

}  // namespace

WindowButton::WindowButton(const QString& symbol, const QString& label, QWidget* parent)
    : StudioControl(radius, parent), symbol_(symbol) {
  setLabel(label);
  setFixedSize(size, size);
}

void WindowButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  paintBox(painter, {.rect = rect(), .radius = radius}, veil());
  drawSymbol(painter, symbol_, symbolFontSize, QRectF(rect()).center(),
             isHovered() ? Studio::ink : Studio::mute);
}

}  // namespace brisklet
