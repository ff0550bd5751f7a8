#include "studio/controls/column_area.h"

#include "studio/controls/palette.h"

#include <QApplication>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

namespace brisklet {

namespace {

constexpr int glideMs = 140;
constexpr int lineHeight = 20;    // points that one of the system's wheel lines scrolls
constexpr int revealMargin = 18;  // points

}  // namespace

ColumnArea::ColumnArea(QWidget* content, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWidgetResizable(true);
  QPalette colors = palette();
  colors.setColor(QPalette::Window, Studio::paper);
  setPalette(colors);
  viewport()->setAutoFillBackground(true);
  setWidget(content);
  content->setAutoFillBackground(true);
  glide_.setDuration(glideMs);
  glide_.setEasingCurve(QEasingCurve::OutCubic);
  connect(&glide_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& value) { verticalScrollBar()->setValue(value.toInt()); });
  connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this] {
    if (awaited_) reveal(QRect(*awaited_));
  });
}

void ColumnArea::reveal(const QRect& part) {
  awaited_.reset();
  if (part.bottom() >= widget()->height()) {
    awaited_ = part;
    return;
  }
  const int value = verticalScrollBar()->value();
  const int first = part.bottom() + 1 + revealMargin - viewport()->height();
  const int last = part.top() - revealMargin;
  // A part that is too high is shown from its top.
  const int target = std::min(std::max(value, first), last);
  if (target != value) glideTo(target);
}

void ColumnArea::wheelEvent(QWheelEvent* event) {
  QScrollBar* bar = verticalScrollBar();
  if (!event->pixelDelta().isNull()) {
    // A touchpad: it has its own smoothness.
    glide_.stop();
    bar->setValue(bar->value() - event->pixelDelta().y());
  } else if (event->angleDelta().y() != 0) {
    const int from = glide_.state() == QVariantAnimation::Running ? glide_.endValue().toInt() : bar->value();
    glideTo(from - event->angleDelta().y() * QApplication::wheelScrollLines() * lineHeight / 120);
  }
  event->accept();
}

void ColumnArea::glideTo(int value) {
  const QScrollBar* bar = verticalScrollBar();
  glide_.stop();
  glide_.setStartValue(bar->value());
  glide_.setEndValue(std::clamp(value, bar->minimum(), bar->maximum()));
  glide_.start();
}

}  // namespace brisklet
