#include "studio/controls/studio_control.h"

#include "studio/controls/focus_mark.h"
#include "studio/controls/palette.h"

#include <QKeyEvent>

namespace brisklet {

StudioControl::StudioControl(double cornerRadius, QWidget* parent)
    : QAbstractButton(parent), cornerRadius_(cornerRadius) {
  setAttribute(Qt::WA_Hover);
  setFocusPolicy(Qt::TabFocus);
  new FocusMark(this, cornerRadius);
}

void StudioControl::setLabel(const QString& label) {
  setToolTip(label);
  setAccessibleName(label);
}

void StudioControl::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isEnter) {
    QAbstractButton::keyPressEvent(event);
    return;
  }
  if (!event->isAutoRepeat()) click();
}

QColor StudioControl::veil() const {
  if (isDown()) return Studio::pressVeil;
  return isHovered() ? Studio::hoverVeil : Qt::transparent;
}

}  // namespace brisklet
