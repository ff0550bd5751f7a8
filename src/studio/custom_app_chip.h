#pragma once

#include "studio/chip.h"

namespace brisklet {

/// The app that the user names.
class CustomAppChip : public Chip {
  Q_OBJECT

 public:
  explicit CustomAppChip(QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {36, 36}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace brisklet
