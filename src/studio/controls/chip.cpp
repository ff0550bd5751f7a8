#include "studio/controls/chip.h"

#include "studio/controls/palette.h"

#include <QKeyEvent>

namespace brisklet {

Chip::Chip(double cornerRadius, QWidget* parent) : StudioControl(cornerRadius, parent) {
  setFocusPolicy(Qt::StrongFocus);
  setCheckable(true);
  // A radio button to assistive technology: one of a group.
  setAutoExclusive(true);
}

void Chip::setSelected(bool selected) {
  // The others of the group are told by themselves, and there may be none that is selected.
  setAutoExclusive(false);
  setChecked(selected);
  setAutoExclusive(true);
}

void Chip::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
      event->ignore();  // the grid walks
      break;
    default:
      StudioControl::keyPressEvent(event);
  }
}

void Chip::focusInEvent(QFocusEvent* event) {
  // Not the button's own, which would let Tab reach only the selected chip.
  QWidget::focusInEvent(event);  // NOLINT(bugprone-parent-virtual-call)
  update();
  Q_EMIT focused();
}

QColor Chip::outline() const {
  if (isSelected()) return Studio::ink;
  return isHovered() || isDown() ? Studio::hoveredLine : Studio::line;
}

}  // namespace brisklet
