#include "studio/rule.h"

#include <QPainter>

#include "studio/control_painting.h"
#include "studio/palette.h"

namespace brisklet {

Rule::Rule(QWidget* parent) : QWidget(parent) {
  setFixedHeight(thickness);
}

void Rule::setProgress(std::optional<double> progress) {
  if (progress == progress_) return;
  progress_ = progress;
  update();
}

void Rule::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintRule(painter, rect(), Studio::line);
  if (progress_) paintRule(painter, QRectF(0, 0, width() * *progress_, height()), Studio::ink);
}

}  // namespace brisklet
