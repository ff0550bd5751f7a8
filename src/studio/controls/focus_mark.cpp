#include "studio/controls/focus_mark.h"

#include "studio/controls/accessibility.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"

#include <QFocusEvent>
#include <QPainter>

namespace brisklet {

namespace {

constexpr int reach = FocusMark::gap + FocusMark::width;

class Ring : public QWidget {
 public:
  Ring(QWidget* parent, double cornerRadius) : QWidget(parent), cornerRadius_(cornerRadius) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    hideFromAccessibility(this);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    setUpPainter(painter);
    paintOutline(painter, {rect(), cornerRadius_ + reach, Studio::focus, FocusMark::width});
  }

 private:
  double cornerRadius_;
};

}  // namespace

FocusMark::FocusMark(QWidget* control, double cornerRadius)
    : QObject(control), control_(control), cornerRadius_(cornerRadius) {
  control->installEventFilter(this);
}

FocusMark::~FocusMark() {
  if (!ring_) return;
  ring_->hide();
  ring_->deleteLater();
}

bool FocusMark::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn: {
      const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
      // A window or a menu that gives the focus back does not say how the control came by it.
      if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason)
        byKeyboard_ = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                      reason == Qt::ShortcutFocusReason;
      update();
      break;
    }
    case QEvent::Hide:
      // One that comes back later is no longer where the keyboard was. A minimised window only seems hidden.
      if (!event->spontaneous()) setByKeyboard(false);
      break;
    case QEvent::FocusOut:
    case QEvent::Move:
    case QEvent::Resize:
      update();
      break;
    default:
      break;
  }
  return false;
}

void FocusMark::setArea(const QRect& area) {
  area_ = area;
  update();
}

void FocusMark::setByKeyboard(bool byKeyboard) {
  byKeyboard_ = byKeyboard;
  update();
}

void FocusMark::update() {
  const bool isMarked = byKeyboard_ && control_->hasFocus() && !(area_ && area_->isEmpty());
  if (!isMarked) {
    // Not deleted: Qt may be on its way through the children of the ring's parent.
    if (ring_) ring_->hide();
    return;
  }
  if (!ring_) ring_ = new Ring(control_->parentWidget(), cornerRadius_);
  place();
  ring_->show();
}

void FocusMark::place() {
  const QRect around = area_.value_or(control_->rect()).adjusted(-reach, -reach, reach, reach);
  const auto within = [&](QWidget* room) { return around.translated(control_->mapTo(room, QPoint())); };
  // The nearest surroundings that do not cut the ring off, so that it scrolls with the control.
  QWidget* room = control_->parentWidget();
  while (!room->isWindow() && !room->rect().contains(within(room))) room = room->parentWidget();
  if (ring_->parentWidget() != room) ring_->setParent(room);
  ring_->setGeometry(within(room));
  ring_->raise();
}

}  // namespace brisklet
