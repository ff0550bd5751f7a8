#include "sheet.h"

#include "drawing/text_line.h"

#include <QPainter>
#include <algorithm>

namespace brisklet {

namespace {

constexpr int margin = 28, gap = 24, captionGap = 6, captionHeight = 18, headingHeight = 34;
constexpr TextStyle captionStyle{12, FontWeight::Regular}, headingStyle{15, FontWeight::Semibold};

}  // namespace

Sheet::Sheet(int columns, const QColor& ground) : columns_(columns), ground_(ground), rows_(1) {}

void Sheet::add(const QImage& picture, const QString& caption) {
  if (rows_.last().cells.size() >= columns_) rows_.append(Row());
  rows_.last().cells.append({picture, caption});
}

void Sheet::startRow(const QString& heading) {
  if (!rows_.last().cells.isEmpty()) rows_.append(Row());
  rows_.last().heading = heading;
}

QImage Sheet::image() const {
  QList<int> widths(columns_, 0);
  QList<int> heights;
  int height = 2 * margin - gap;
  for (const Row& row : rows_) {
    int tallest = 0;
    for (qsizetype i = 0; i < row.cells.size(); ++i) {
      widths[i] = std::max(widths[i], row.cells[i].picture.width());
      tallest = std::max(tallest, row.cells[i].picture.height());
    }
    heights.append(tallest);
    height += tallest + captionGap + captionHeight + gap + (row.heading.isEmpty() ? 0 : headingHeight);
  }
  int width = 2 * margin - gap;
  for (const int column : widths) width += column + gap;

  QImage sheet(width, height, QImage::Format_RGB32);
  sheet.fill(ground_);
  QPainter painter(&sheet);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor text = ground_.lightnessF() < 0.5 ? QColor(0xc8, 0xc8, 0xd0) : QColor(0x55, 0x55, 0x5c);
  int y = margin;
  for (qsizetype r = 0; r < rows_.size(); ++r) {
    if (!rows_[r].heading.isEmpty()) {
      TextLine(rows_[r].heading, headingStyle).draw(painter, QPointF(margin, y + 18), text);
      y += headingHeight;
    }
    int x = margin;
    for (qsizetype i = 0; i < rows_[r].cells.size(); ++i) {
      const Cell& cell = rows_[r].cells[i];
      painter.drawImage(x, y, cell.picture);
      TextLine(cell.caption, captionStyle, std::max(60, widths[i]))
          .draw(painter, QPointF(x, y + heights[r] + captionGap + 13), text);
      x += widths[i] + gap;
    }
    y += heights[r] + captionGap + captionHeight + gap;
  }
  return sheet;
}

QImage enlarged(const QImage& picture, int factor) {
  return picture.scaled(picture.size() * factor, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

}  // namespace brisklet
