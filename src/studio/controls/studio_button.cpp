#include "studio/controls/studio_button.h"

#include "drawing/symbol_image.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>
#include <cmath>

namespace brisklet {

namespace {

constexpr double symbolFontSize = 11, disabledOpacity = 0.4;

}  // namespace

StudioButton::StudioButton(const QString& title, const QString& systemImage, ButtonLook look, QWidget* parent)
    : StudioControl(radius, parent), systemImage_(systemImage), look_(look) {
  const bool isWide = look == ButtonLook::Wide;
  setFixedHeight(isWide ? wideHeight : buttonHeight);
  if (isWide) setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setCursor(isWide ? Qt::ArrowCursor : Qt::PointingHandCursor);
  setTitle(title);
}

void StudioButton::setTitle(const QString& title) {
  if (title == text()) return;
  setText(title);
  line_ = TextLine(title, titleStyle);
  updateGeometry();
  update();
}

void StudioButton::setUsable(bool usable) {
  if (usable == isEnabled()) return;
  // Also when a panel's window is the active one for now.
  if (!usable && window()->focusWidget() == this) {
    // Without a widget in focus, Qt would choose the first one when the window becomes active again.
    window()->setFocus(Qt::OtherFocusReason);
    wantsFocusBack_ = true;
  }
  setEnabled(usable);
  if (usable)
    setCursor(Qt::PointingHandCursor);
  else
    unsetCursor();
  if (usable && wantsFocusBack_) {
    const QWidget* focused = window()->focusWidget();
    if (!focused || focused == window()) setFocus(Qt::TabFocusReason);
    wantsFocusBack_ = false;
  }
}

QSize StudioButton::sizeHint() const {
  const double margin = look_ == ButtonLook::Solid ? solidMargin : flatMargin;
  double width = 2 * margin + line_.width();
  if (!systemImage_.isEmpty()) width += symbolSize(systemImage_, symbolFontSize).width() + spacing;
  return {static_cast<int>(std::ceil(width)), height()};
}

void StudioButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  if (!isEnabled()) painter.setOpacity(disabledOpacity);

  const bool solid = look_ == ButtonLook::Solid, isWide = look_ == ButtonLook::Wide;
  const RoundedBox box{.rect = rect(), .radius = radius};
  if (solid)
    paintBox(painter, box, isDown() ? Studio::pressedInk : isHovered() ? Studio::hoveredInk : Studio::ink);
  else if (isWide)
    paintBox(painter, {rect(), radius, isHovered() || isDown() ? Studio::hoveredLine : Studio::line, 1},
             Studio::white);
  if (!solid && (!isWide || isDown())) paintBox(painter, box, veil());

  const QColor color = solid ? Studio::white : Studio::ink;
  // Where the button is wider than its content, the content stands in its middle.
  const int spare = (width() - sizeHint().width()) / 2;
  double x = isWide ? (width() - line_.width()) / 2 : (solid ? solidMargin : flatMargin) + spare;
  if (!systemImage_.isEmpty()) {
    const double symbolWidth = symbolSize(systemImage_, symbolFontSize).width();
    drawSymbol(painter, systemImage_, symbolFontSize, {x + symbolWidth / 2, height() / 2.0}, color);
    x += symbolWidth + spacing;
  }
  line_.draw(painter, {x, centredBaseline(painter, 0, height(), titleStyle)}, color);
}

}  // namespace brisklet
