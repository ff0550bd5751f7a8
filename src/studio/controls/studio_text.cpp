#include "studio/controls/studio_text.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QPainter>
#include <cmath>

namespace brisklet {

StudioText::StudioText(const TextStyle& style, const QColor& color, QWidget* parent, LetterCase letterCase)
    : QLabel(parent), style_(style), color_(color), letterCase_(letterCase), baselineStyle_(style) {
  setTextFormat(Qt::PlainText);
  setFixedHeight(rowHeight(style));
}

void StudioText::setText(const QString& text) {
  if (text == QLabel::text()) return;
  QLabel::setText(text);
  line_ = TabularText(shownText(), style_, width());
  updateGeometry();
}

void StudioText::standWith(const TextStyle& style) {
  baselineStyle_ = style;
  update();
}

QString StudioText::shownText() const {
  return letterCase_ == LetterCase::Upper ? text().toUpper() : text();
}

QSize StudioText::sizeHint() const {
  return {static_cast<int>(std::ceil(TabularText(shownText(), style_).width())), maximumHeight()};
}

void StudioText::resizeEvent(QResizeEvent* event) {
  line_ = TabularText(shownText(), style_, width());
  QLabel::resizeEvent(event);
}

void StudioText::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  line_.draw(painter, {0, centredBaseline(painter, 0, height(), baselineStyle_)}, color_);
}

StudioLabel::StudioLabel(const QString& text, QWidget* parent)
    : StudioText({11, FontWeight::Semibold, 0.6}, Studio::mute, parent, LetterCase::Upper) {
  setText(text);
}

}  // namespace brisklet
