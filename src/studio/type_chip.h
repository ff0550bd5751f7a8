#pragma once

#include "drawing/text_line.h"
#include "model/catalogue.h"
#include "studio/controls/chip.h"

namespace brisklet {

/// One message template.
class TypeChip : public Chip {
  Q_OBJECT

 public:
  static constexpr int chipHeight = 28, margin = 8, radius = 7;  // points

  explicit TypeChip(const PingType& type, QWidget* parent = nullptr);

  [[nodiscard]] const PingType& type() const { return type_; }
  [[nodiscard]] QSize sizeHint() const override { return {88, chipHeight}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  PingType type_;
  TextLine line_;
};

}  // namespace brisklet
