#include "studio/controls/studio_field.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/focus_mark.h"
#include "studio/controls/palette.h"

#include <QEvent>
#include <QPainter>

namespace brisklet {

StudioField::StudioField(const QString& title, QWidget* parent)
    : QWidget(parent),
      title_(new StudioText({12, FontWeight::Regular}, Studio::mute, this)),
      edit_(new StudioLineEdit({13, FontWeight::Regular}, margin, margin, this)) {
  title_->setText(title);
  title_->setBuddy(edit_);
  edit_->setPlaceholderText(title);
  edit_->setAccessibleName(title);
  new FocusMark(edit_, radius);
  edit_->installEventFilter(this);
  edit_->setAttribute(Qt::WA_Hover);
  setFixedHeight(sizeHint().height());
  connect(edit_, &StudioLineEdit::lineEdited, this, &StudioField::textEdited);
  connect(edit_, &QLineEdit::editingFinished, this, &StudioField::editingFinished);
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
