#pragma once

#include "drawing/text_line.h"
#include "studio/controls/studio_control.h"

namespace brisklet {

/// The button that adds a ping, as wide as its block.
class AddPingButton : public StudioControl {
  Q_OBJECT

 public:
  static constexpr int buttonHeight = 34, radius = 7;  // points

  explicit AddPingButton(QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override { return {120, buttonHeight}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  TextLine line_;
};

}  // namespace brisklet
