#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>

namespace brisklet {

/// Pictures with captions in rows of cells, pixel by pixel. Columns are as wide as their widest picture.
class Sheet {
 public:
  explicit Sheet(int columns, const QColor& ground = QColor(0x26, 0x26, 0x2a));

  void add(const QImage& picture, const QString& caption);
  /// Goes on in a new row, under a heading.
  void startRow(const QString& heading);

  [[nodiscard]] QImage image() const;

 private:
  struct Cell {
    QImage picture;
    QString caption;
  };
  struct Row {
    QString heading;
    QList<Cell> cells;
  };
  int columns_;
  QColor ground_;
  QList<Row> rows_;
};

/// A picture enlarged by a whole factor, so that its pixels can be seen.
[[nodiscard]] QImage enlarged(const QImage& picture, int factor);

}  // namespace brisklet
