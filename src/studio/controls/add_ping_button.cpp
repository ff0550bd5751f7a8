#include "studio/controls/add_ping_button.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr TextStyle titleStyle{13, FontWeight::Medium};

}  // namespace

AddPingButton::AddPingButton(QWidget* parent) : StudioControl(radius, parent) {
  setText(u"Add ping"_s);
  setFixedHeight(buttonHeight);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  line_ = TextLine(text(), titleStyle);
}

void AddPingButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const QColor outline = isHovered() || isDown() ? Studio::hoveredLine : Studio::line;
  paintBox(painter, {rect(), radius, outline, 1}, Studio::white);
  if (isDown()) paintBox(painter, {.rect = rect(), .radius = radius}, veil());
  line_.draw(painter, {(width() - line_.width()) / 2, centredBaseline(painter, 0, height(), titleStyle)},
             Studio::ink);
}

}  // namespace brisklet
