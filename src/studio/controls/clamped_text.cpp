#include "studio/controls/clamped_text.h"

#include "studio/controls/control_painting.h"

#include <algorithm>

namespace brisklet {

namespace {

/// More characters than the lines of any row have.
constexpr qsizetype longest = 1024;

}  // namespace

ClampedText::ClampedText(const QString& text, const TextStyle& style, double maxWidth, int maxLines)
    : style_(style) {
  // Line breaks are blanks here: the lines are for what fits.
  QString rest = text.left(longest).simplified();
  runsLeft_ = rest.isRightToLeft();
  while (!rest.isEmpty() && static_cast<int>(lines_.size()) < maxLines - 1) {
    const qsizetype length = firstLineLength(rest, style, maxWidth);
    lines_.emplace_back(rest.left(length).trimmed(), style, maxWidth);
    rest = rest.mid(length).trimmed();
  }
  if (!rest.isEmpty()) lines_.emplace_back(rest, style, maxWidth);
}

int ClampedText::height() const {
  return lineCount() * rowHeight(style_);
}

void ClampedText::draw(QPainter& painter, const QPointF& topLeft, const QColor& color) const {
  double widest = 0;
  for (const TextLine& line : lines_) widest = std::max(widest, line.width());
  const int lineHeight = rowHeight(style_);
  double top = topLeft.y();
  for (const TextLine& line : lines_) {
    const double x = topLeft.x() + (runsLeft_ ? widest - line.width() : 0);
    line.draw(painter, {x, centredBaseline(painter, top, lineHeight, style_)}, color);
    top += lineHeight;
  }
}

}  // namespace brisklet
