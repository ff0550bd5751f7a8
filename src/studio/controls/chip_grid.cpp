#include "studio/controls/chip_grid.h"

#include "studio/controls/accessibility.h"

#include <QKeyEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace brisklet {

namespace {

int columnCount(const ChipRows& rows, int width) {
  if (rows.columns > 0) return rows.columns;
  return std::max(1, static_cast<int>((width + rows.spacing) / (rows.minColumnWidth + rows.spacing)));
}

}  // namespace

QList<QRect> chipPlaces(const ChipRows& rows, int width, int count) {
  const int columns = columnCount(rows, width);
  const double columnWidth = std::max(1.0, (width - (columns - 1) * rows.spacing) / columns);
  const int side = static_cast<int>(std::ceil(columnWidth - 1e-6));
  const int height = rows.shape == ChipRows::Shape::Square ? side : rows.height;
  QList<QRect> places;
  for (int i = 0; i < count; ++i) {
    const double left = (i % columns) * (columnWidth + rows.spacing);
    const int row = i / columns;
    const int y = static_cast<int>(std::lround(row * (height + rows.spacing)));
    if (rows.shape == ChipRows::Shape::Square) {
      // Never beyond the last column's edge.
      const int x = static_cast<int>(std::lround(left + (columnWidth - side) / 2));
      places.append({std::clamp(x, 0, std::max(0, width - side)), y, side, height});
    } else {
      const int x = static_cast<int>(std::lround(left));
      places.append({x, y, static_cast<int>(std::lround(left + columnWidth)) - x, height});
    }
  }
  return places;
}

ChipGrid::ChipGrid(const QString& name, const ChipRows& rows, QWidget* parent)
    : QWidget(parent), rows_(rows) {
  setAccessibleRole(this, QAccessible::Grouping);
  setAccessibleName(name);
}

void ChipGrid::add(Chip* chip) {
  chip->setParent(this);
  chips_.append(chip);
  connect(chip, &Chip::focused, this, [this, chip] { setTabStop(chip); });
  place();
  chip->show();
}

void ChipGrid::clear() {
  const QWidget* focused = window()->focusWidget();
  hadFocus_ = focused && isAncestorOf(focused);
  if (hadFocus_) window()->setFocus(Qt::OtherFocusReason);
  for (Chip* chip : std::exchange(chips_, {})) {
    chip->hide();
    chip->deleteLater();
  }
}

void ChipGrid::selectionChanged() {
  if (chips_.isEmpty() || std::any_of(chips_.begin(), chips_.end(), [](Chip* c) { return c->hasFocus(); }))
    return;
  const auto selected =
      std::find_if(chips_.begin(), chips_.end(), [](const Chip* chip) { return chip->isSelected(); });
  Chip* const stop = selected == chips_.end() ? chips_.first() : *selected;
  setTabStop(stop);
  if (std::exchange(hadFocus_, false)) stop->setFocus(Qt::TabFocusReason);
}

void ChipGrid::setTabStop(const Chip* stop) {
  for (Chip* chip : chips_) chip->setFocusPolicy(chip == stop ? Qt::StrongFocus : Qt::ClickFocus);
}

void ChipGrid::resizeEvent(QResizeEvent*) {
  place();
}

void ChipGrid::place() {
  const QList<QRect> places = chipPlaces(rows_, width(), static_cast<int>(chips_.size()));
  for (qsizetype i = 0; i < chips_.size(); ++i) chips_[i]->setGeometry(places[i]);
  setFixedHeight(places.isEmpty() ? 0 : places.last().bottom() + 1);
}

Chip* ChipGrid::neighbour(const Chip* of, int key) const {
  const qsizetype index = chips_.indexOf(of);
  const int columns = columnCount(rows_, width());
  qsizetype step = 0;
  if (key == Qt::Key_Left) step = -1;
  if (key == Qt::Key_Right) step = 1;
  if (key == Qt::Key_Up) step = -columns;
  if (key == Qt::Key_Down) step = columns;
  const qsizetype next = index + step;
  return step == 0 || next < 0 || next >= chips_.size() ? nullptr : chips_[next];
}

void ChipGrid::keyPressEvent(QKeyEvent* event) {
  const auto focused =
      std::find_if(chips_.begin(), chips_.end(), [](Chip* chip) { return chip->hasFocus(); });
  const bool isArrow = event->key() >= Qt::Key_Left && event->key() <= Qt::Key_Down;
  if (focused == chips_.end() || !isArrow) {
    event->ignore();
    return;
  }
  if (Chip* next = neighbour(*focused, event->key())) next->setFocus(Qt::TabFocusReason);
}

}  // namespace brisklet
