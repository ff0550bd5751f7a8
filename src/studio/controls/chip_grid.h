#pragma once

#include "studio/controls/chip.h"

#include <QList>
#include <QRect>
#include <QWidget>

namespace brisklet {

/// How chips stand in rows. In points.
struct ChipRows {
  enum class Shape {
    Square,  // as high as its column is wide
    Strip    // of `height`
  };
  Shape shape = Shape::Square;
  double spacing = 8;
  /// The number of columns, or 0 for as many as fit at `minColumnWidth`.
  int columns = 0;
  double minColumnWidth = 0;
  int height = 0;
};

/// The places of `count` chips in a width. Columns are equal and need not be whole points: squares are then
/// rounded up, all to one size, and centred on their columns.
[[nodiscard]] QList<QRect> chipPlaces(const ChipRows& rows, int width, int count);

/// A group of chips. Tab reaches the group once, at its selected chip; the arrow keys walk in it.
class ChipGrid : public QWidget {
  Q_OBJECT

 public:
  ChipGrid(const QString& name, const ChipRows& rows, QWidget* parent = nullptr);

  /// Takes the chip over.
  void add(Chip* chip);
  /// The focus, if a chip has it, goes to one of those that come.
  void clear();
  [[nodiscard]] const QList<Chip*>& chips() const { return chips_; }
  /// To be called when there are other chips, or another may be selected.
  void selectionChanged();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// Gives the chips their places, and the grid the height that they need.
  void place();
  void setTabStop(const Chip* stop);
  /// The chip that lies next to another in the direction of an arrow key; null at the edge.
  [[nodiscard]] Chip* neighbour(const Chip* of, int key) const;

  ChipRows rows_;
  QList<Chip*> chips_;
  bool hadFocus_ = false;
};

}  // namespace brisklet
