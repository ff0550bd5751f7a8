#pragma once

#include "studio/controls/studio_control.h"

namespace brisklet {

/// A tile that stands for one of several choices. Whether it is the chosen one is told to it: a press only
/// emits `clicked`.
class Chip : public StudioControl {
  Q_OBJECT

 public:
  Chip(double cornerRadius, QWidget* parent);

  void setSelected(bool selected);
  [[nodiscard]] bool isSelected() const { return isChecked(); }

 Q_SIGNALS:
  /// The chip has come into focus.
  void focused();

 protected:
  void nextCheckState() override {}
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

  /// The outline of a tile: ink when it is selected.
  [[nodiscard]] QColor outline() const;
  [[nodiscard]] double outlineWidth() const { return isSelected() ? 2 : 1; }
};

}  // namespace brisklet
