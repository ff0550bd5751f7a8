#include "studio/slim_scroll_bar.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "studio/control_painting.h"
#include "studio/palette.h"

namespace brisklet {

namespace {

constexpr double thumbWidth = 6, inset = 3, leastThumb = 36;  // pt
constexpr float restOpacity = 0.22F, hoveredOpacity = 0.42F, heldOpacity = 0.56F;

}  // namespace

SlimScrollBar::SlimScrollBar(QScrollBar* bar, QWidget* parent) : QWidget(parent), bar_(bar) {
  const auto follow = [this] {
    setVisible(bar_->maximum() > bar_->minimum());
    update();
  };
  connect(bar, &QScrollBar::rangeChanged, this, follow);
  connect(bar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
  follow();
}

QRectF SlimScrollBar::thumb() const {
  const double room = height() - 2 * inset;
  const double content = bar_->maximum() - bar_->minimum() + bar_->pageStep();
  const double length = std::clamp(room * bar_->pageStep() / content, std::min(leastThumb, room), room);
  const double travel = bar_->maximum() - bar_->minimum();
  const double share = travel > 0 ? (bar_->value() - bar_->minimum()) / travel : 0;
  return {width() - inset - thumbWidth, inset + share * (room - length), thumbWidth, length};
}

void SlimScrollBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  QColor color = Studio::ink;
  color.setAlphaF(heldAt_ ? heldOpacity : underMouse() ? hoveredOpacity : restOpacity);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawRoundedRect(thumb(), thumbWidth / 2, thumbWidth / 2);
}

void SlimScrollBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const double y = event->position().y();
  if (y >= thumb().top() && y < thumb().bottom())
    heldAt_ = y - thumb().top();
  else
    bar_->triggerAction(y < thumb().top() ? QScrollBar::SliderPageStepSub : QScrollBar::SliderPageStepAdd);
  update();
}

void SlimScrollBar::mouseMoveEvent(QMouseEvent* event) {
  if (!heldAt_) return;
  const double room = height() - 2 * inset - thumb().height();
  if (room <= 0) return;
  const double share = (event->position().y() - *heldAt_ - inset) / room;
  bar_->setValue(bar_->minimum() +
                 static_cast<int>(std::lround(share * (bar_->maximum() - bar_->minimum()))));
}

void SlimScrollBar::mouseReleaseEvent(QMouseEvent*) {
  heldAt_.reset();
  update();
}

void SlimScrollBar::enterEvent(QEnterEvent*) {
  update();
}

void SlimScrollBar::leaveEvent(QEvent*) {
  update();
}

}  // namespace brisklet
