#include "studio/rule.h"

#include <QPainter>

#include "studio/palette.h"

namespace brisklet {

Rule::Rule(QWidget* parent) : QWidget(parent) {
  setFixedHeight(thickness);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void Rule::setProgress(std::optional<double> progress) {
  if (progress == progress_) return;
  progress_ = progress;
  update();
}

void Rule::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Studio::line);
  if (progress_) painter.fillRect(QRectF(0, 0, width() * *progress_, height()), Studio::ink);
}

}  // namespace brisklet
