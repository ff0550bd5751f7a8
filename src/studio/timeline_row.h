#pragma once

#include "lockscreen/app_glyph.h"
#include "model/ping.h"
#include "studio/controls/clamped_text.h"
#include "studio/controls/tabular_text.h"

#include <QPainter>
#include <QRect>

namespace brisklet {

/// The row's name for assistive technology, index counted from 0: "Ping 1, @maya".
[[nodiscard]] QString timelineRowName(const Ping& ping, qsizetype index);

/// One ping of the timeline, laid out for a width. In points from the row's upper left corner.
class TimelineRow {
 public:
  static constexpr int margin = 10, spacing = 10, lineSpacing = 2, glyphSize = 38, removeSize = 18;
  static constexpr double radius = 12, glyphRadius = 10;

  /// How the row is shown.
  struct Look {
    bool isSelected = false;
    bool isHovered = false;
    bool isPressed = false;
    bool isRemoveHovered = false;
    bool isRemovePressed = false;
  };

  TimelineRow(Ping ping, int width);

  [[nodiscard]] const Ping& ping() const { return ping_; }
  [[nodiscard]] int height() const { return height_; }
  /// The button that removes the ping, in a row of this width.
  [[nodiscard]] static QRect removeRect(int width);

  void paint(QPainter& painter, const Look& look, AppGlyphCache& glyphs) const;

 private:
  Ping ping_;
  int width_;
  int height_;
  ClampedText title_, message_;
  TabularText delay_;
};

}  // namespace brisklet
