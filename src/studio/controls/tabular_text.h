#pragma once

#include "drawing/text_line.h"

#include <QColor>
#include <QPainter>
#include <QString>
#include <limits>
#include <vector>

namespace brisklet {

/// One line of text whose digits all have the same width, so that numbers under each other line up and a
/// number that changes moves nothing. The font has such digits, but Qt 6.4 cannot ask it for them.
class TabularText {
 public:
  TabularText() = default;
  TabularText(const QString& text, const TextStyle& style,
              double maxWidth = std::numeric_limits<double>::infinity());

  [[nodiscard]] double width() const { return width_; }

  void draw(QPainter& painter, const QPointF& baselineLeft, const QColor& color) const;

 private:
  struct Part {
    TextLine line;
    double x = 0;
  };

  std::vector<Part> parts_;
  double width_ = 0;
};

}  // namespace brisklet
