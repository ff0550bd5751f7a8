#pragma once

#include "drawing/text_line.h"

#include <QColor>
#include <QPainter>
#include <QString>
#include <vector>

namespace brisklet {

/// Text in at most a number of lines, broken between words; what does not fit ends in an ellipsis. Lines of a
/// text that runs to the left are flush on the right.
class ClampedText {
 public:
  ClampedText() = default;
  ClampedText(const QString& text, const TextStyle& style, double maxWidth, int maxLines);

  /// At least one: an empty text is a line high.
  [[nodiscard]] int lineCount() const { return std::max(1, static_cast<int>(lines_.size())); }
  /// In points; every line is `rowHeight` high.
  [[nodiscard]] int height() const;

  void draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const;

 private:
  std::vector<TextLine> lines_;
  TextStyle style_;
  bool runsLeft_ = false;
};

}  // namespace brisklet
