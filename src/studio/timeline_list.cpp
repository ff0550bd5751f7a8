#include "studio/timeline_list.h"

#include "studio/controls/control_painting.h"
#include "studio/controls/focus_mark.h"
#include "studio/timeline_accessible.h"

#include <QAccessible>
#include <QHash>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// More rows than any screen shows.
constexpr qsizetype mostShownRows = 128;

bool looksTheSame(const Ping& a, const Ping& b) {
  return a.delayMs == b.delayMs && a.title == b.title && a.message == b.message && a.appId == b.appId &&
         a.appLabel == b.appLabel && a.icon == b.icon && a.color == b.color;
}

}  // namespace

TimelineList::TimelineList(QWidget* parent)
    : QWidget(parent), mark_(new FocusMark(this, TimelineRow::radius)), shownRows_(mostShownRows) {
  installTimelineAccessibility();
  setAccessibleName(u"Pings"_s);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
}

void TimelineList::setPings(const QList<Ping>& pings, const std::optional<QString>& selectedId) {
  const bool rowsDiffer =
      !std::equal(pings.begin(), pings.end(), rows_.begin(), rows_.end(),
                  [](const Ping& ping, const Row& row) { return ping.id == row.ping.id; });
  const qsizetype formerCurrent = currentRow();
  setRows(pings);
  setSelected(selectedId);
  // The place of a current row that has gone goes to the row that came after it.
  if (rowOf(currentId_) < 0)
    currentId_ = rows_.isEmpty() || formerCurrent < 0
                     ? QString()
                     : rows_[std::min(formerCurrent, rows_.size() - 1)].ping.id;
  if (rowsDiffer) {
    hovered_ = underMouse() ? spotAt(mapFromGlobal(QCursor::pos())) : Spot{};
    pressed_ = {};
    announceTimelineRows(*this);
  }
  markCurrentRow();
}

void TimelineList::setRows(const QList<Ping>& pings) {
  // A row that looks as before is as high as before.
  QHash<QStringView, const Row*> formerRows;
  const QList<Row> former = std::exchange(rows_, {});
  for (const Row& row : former) formerRows.insert(row.ping.id, &row);
  for (const Ping& ping : pings) {
    const Row* same = formerRows.value(ping.id);
    if (same && !looksTheSame(same->ping, ping)) same = nullptr;
    if (!same) shownRows_.remove(ping.id);
    rows_.append({ping, 0, same ? same->height : 0});
  }
  layOut();
}

void TimelineList::setSelected(const std::optional<QString>& id) {
  if (id == selectedId_) return;
  const qsizetype former = selectedId_ ? rowOf(*selectedId_) : -1;
  selectedId_ = id;
  const qsizetype selected = id ? rowOf(*id) : -1;
  if (selected >= 0) {
    currentId_ = *id;
    Q_EMIT revealRequested(rowRect(selected));
  }
  for (const qsizetype row : {former, selected}) {
    updateRow(row);
    announceTimelineSelection(*this, row);
  }
}

qsizetype TimelineList::rowOf(const QString& pingId) const {
  const auto found =
      std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) { return row.ping.id == pingId; });
  return found == rows_.end() ? -1 : found - rows_.begin();
}

QRect TimelineList::rowRect(qsizetype row) const {
  return {0, rows_[row].top, width(), rows_[row].height};
}

QRect TimelineList::removeRect(qsizetype row) const {
  return TimelineRow::removeRect(width()).translated(0, rows_[row].top);
}

qsizetype TimelineList::currentRow() const {
  const qsizetype current = rowOf(currentId_);
  return current < 0 && !rows_.isEmpty() ? 0 : current;
}

void TimelineList::setCurrentRow(qsizetype row) {
  if (row < 0 || row >= rows_.size()) return;
  currentId_ = rows_[row].ping.id;
  markCurrentRow();
  Q_EMIT revealRequested(rowRect(row));
  announceCurrentTimelineRow(*this);
}

void TimelineList::pressRow(qsizetype row) {
  if (row >= 0 && row < rows_.size()) Q_EMIT rowPressed(Ping(rows_[row].ping));
}

void TimelineList::pressRemove(qsizetype row) {
  if (row >= 0 && row < rows_.size()) Q_EMIT removePressed(QString(rows_[row].ping.id));
}

bool TimelineList::isMarked() const {
  return mark_->isShown();
}

void TimelineList::layOut() {
  int top = 0;
  for (Row& row : rows_) {
    row.top = top;
    if (row.height == 0 && laidOutWidth_ > 0) row.height = laidOut(row).height();
    top += row.height + rowSpacing;
  }
  setFixedHeight(std::max(0, top - rowSpacing));
  markCurrentRow();
  update();
}

const TimelineRow& TimelineList::laidOut(const Row& row) {
  if (TimelineRow* shown = shownRows_.object(row.ping.id)) return *shown;
  auto* made = new TimelineRow(row.ping, laidOutWidth_);
  shownRows_.insert(row.ping.id, made);
  return *made;
}

void TimelineList::resizeEvent(QResizeEvent*) {
  if (width() == laidOutWidth_) return;
  laidOutWidth_ = width();
  shownRows_.clear();
  for (Row& row : rows_) row.height = 0;
  layOut();
}

TimelineList::Spot TimelineList::spotAt(const QPoint& at) const {
  const auto after = std::upper_bound(rows_.begin(), rows_.end(), at.y(),
                                      [](int y, const Row& row) { return y < row.top + row.height; });
  if (after == rows_.end() || at.y() < after->top || at.x() < 0 || at.x() >= width()) return {};
  const qsizetype row = after - rows_.begin();
  return {row, removeRect(row).contains(at)};
}

void TimelineList::updateRow(qsizetype row) {
  if (row >= 0 && row < rows_.size()) update(rowRect(row));
}

void TimelineList::markCurrentRow() {
  const qsizetype row = currentRow();
  mark_->setArea(row < 0 ? QRect() : rowRect(row));
}

void TimelineList::setHovered(const Spot& spot) {
  if (spot == hovered_) return;
  updateRow(hovered_.row);
  hovered_ = spot;
  updateRow(hovered_.row);
}

void TimelineList::setPressed(const Spot& spot) {
  updateRow(pressed_.row);
  pressed_ = spot;
  updateRow(pressed_.row);
}

void TimelineList::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  setUpPainter(painter);
  const QRect area = event->rect();
  auto row = std::upper_bound(rows_.begin(), rows_.end(), area.top(),
                              [](int y, const Row& each) { return y < each.top + each.height; });
  for (; row != rows_.end() && row->top <= area.bottom(); ++row) {
    const qsizetype index = row - rows_.begin();
    const bool isHovered = hovered_.row == index, isPressed = pressed_.row == index && hovered_ == pressed_;
    painter.save();
    painter.translate(0, row->top);
    laidOut(*row).paint(painter,
                        {.isSelected = isSelected(index),
                         .isHovered = isHovered,
                         .isPressed = isPressed && !pressed_.isRemove,
                         .isRemoveHovered = isHovered && hovered_.isRemove,
                         .isRemovePressed = isPressed && pressed_.isRemove},
                        glyphs_);
    painter.restore();
  }
}

bool TimelineList::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const Spot spot = spotAt(help->pos());
  if (spot.isRemove)
    QToolTip::showText(help->globalPos(), u"Remove (Delete)"_s, this, removeRect(spot.row));
  else
    QToolTip::hideText();
  return true;
}

void TimelineList::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  setHovered(spotAt(event->position().toPoint()));
  setPressed(hovered_);
  mark_->setByKeyboard(false);
  if (pressed_.row >= 0) setCurrentRow(pressed_.row);
}

void TimelineList::mouseMoveEvent(QMouseEvent* event) {
  const Spot spot = spotAt(event->position().toPoint());
  // What is held down does not light up others on the way.
  if (!(event->buttons() & Qt::LeftButton) || spot == pressed_)
    setHovered(spot);
  else
    setHovered({});
}

void TimelineList::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const Spot released = spotAt(event->position().toPoint());
  const Spot pressed = pressed_;
  setPressed({});
  setHovered(released);
  if (pressed.row < 0 || released != pressed) return;
  if (pressed.isRemove)
    pressRemove(pressed.row);
  else
    pressRow(pressed.row);
}

void TimelineList::mouseDoubleClickEvent(QMouseEvent*) {
  // One press already did what was meant. The next row may have moved under the pointer since.
}

void TimelineList::leaveEvent(QEvent*) {
  setHovered({});
}

void TimelineList::keyPressEvent(QKeyEvent* event) {
  constexpr qsizetype page = 8;
  const qsizetype current = currentRow();
  const auto walkTo = [&](qsizetype row) {
    mark_->setByKeyboard(true);
    setCurrentRow(std::clamp<qsizetype>(row, 0, rows_.size() - 1));
  };
  if (current < 0) {
    event->ignore();
    return;
  }
  switch (event->key()) {
    case Qt::Key_Up:
      return walkTo(current - 1);
    case Qt::Key_Down:
      return walkTo(current + 1);
    case Qt::Key_PageUp:
      return walkTo(current - page);
    case Qt::Key_PageDown:
      return walkTo(current + page);
    case Qt::Key_Home:
      return walkTo(0);
    case Qt::Key_End:
      return walkTo(rows_.size() - 1);
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (!event->isAutoRepeat()) pressRow(current);
      return;
    case Qt::Key_Delete:
      mark_->setByKeyboard(true);
      if (!event->isAutoRepeat()) pressRemove(current);
      return;
    default:
      event->ignore();
  }
}

void TimelineList::focusInEvent(QFocusEvent* event) {
  markCurrentRow();
  if (event->reason() == Qt::MouseFocusReason || currentRow() < 0) return;
  Q_EMIT revealRequested(rowRect(currentRow()));
  announceCurrentTimelineRow(*this);
}

}  // namespace brisklet
