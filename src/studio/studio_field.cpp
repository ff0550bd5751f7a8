#include "studio/studio_field.h"

#include <QEvent>
#include <QPainter>
#include <QPalette>

#include "platform/fonts.h"
#include "studio/control_painting.h"
#include "studio/focus_mark.h"
#include "studio/palette.h"

namespace brisklet {

namespace {

/// What a line edit leaves empty on each side by itself.
constexpr int lineEditMargin = 2;

}  // namespace

void styleLineEdit(QLineEdit& edit, const TextStyle& style) {
  edit.setFrame(false);
  edit.setFont(systemFont(style.sizePt, style.weight));
  edit.setAttribute(Qt::WA_MacShowFocusRect, false);
  QPalette palette = edit.palette();
  palette.setColor(QPalette::Base, Qt::transparent);
  palette.setColor(QPalette::Text, Studio::ink);
  palette.setColor(QPalette::PlaceholderText, Studio::placeholder);
  palette.setColor(QPalette::Highlight, Studio::textSelection);
  palette.setColor(QPalette::HighlightedText, Studio::ink);
  edit.setPalette(palette);
}

StudioField::StudioField(const QString& title, QWidget* parent)
    : QWidget(parent),
      title_(new StudioText({12, FontWeight::Regular}, Studio::mute, this)),
      edit_(new QLineEdit(this)) {
  title_->setText(title);
  title_->setBuddy(edit_);
  styleLineEdit(*edit_, {13, FontWeight::Regular});
  edit_->setTextMargins(margin - lineEditMargin, 0, margin - lineEditMargin, 0);
  edit_->setPlaceholderText(title);
  edit_->setAccessibleName(title);
  new FocusMark(edit_, radius);
  edit_->installEventFilter(this);
  edit_->setAttribute(Qt::WA_Hover);
  setFixedHeight(sizeHint().height());
  connect(edit_, &QLineEdit::textEdited, this, &StudioField::textEdited);
  connect(edit_, &QLineEdit::editingFinished, this, &StudioField::editingFinished);
}

void StudioField::setText(const QString& text) {
  if (text == edit_->text()) return;
  edit_->setText(text);
  if (!edit_->hasFocus()) edit_->setCursorPosition(0);
}

QSize StudioField::sizeHint() const {
  return {120, title_->height() + spacing + boxHeight};
}

void StudioField::resizeEvent(QResizeEvent*) {
  title_->setGeometry(0, 0, width(), title_->height());
  edit_->setGeometry(0, height() - boxHeight, width(), boxHeight);
}

bool StudioField::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Enter || event->type() == QEvent::Leave) update();
  return false;
}

void StudioField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  setUpPainter(painter);
  const QColor outline = edit_->underMouse() ? Studio::hoveredLine : Studio::line;
  paintBox(painter, {edit_->geometry(), radius, outline, 1}, Studio::white);
}

}  // namespace brisklet
