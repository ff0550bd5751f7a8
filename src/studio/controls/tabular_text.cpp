#include "studio/controls/tabular_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

double digitWidth(const TextStyle& style) {
  double width = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit)
    width = std::max(width, TextLine(QChar(digit), style).width());
  return width;
}

/// The width that blanks at the end of a text take too.
double advance(const QString& text, const TextStyle& style) {
  return TextLine(text + u'|', style).width() - TextLine(u"|"_s, style).width();
}

}  // namespace

TabularText::TabularText(const QString& text, const TextStyle& style, double maxWidth) {
  const double slot = std::any_of(text.cbegin(), text.cend(), isDigit) ? digitWidth(style) : 0;
  double x = 0;
  for (qsizetype at = 0; slot > 0 && at < text.size();) {
    if (isDigit(text[at])) {
      TextLine digit(text.mid(at, 1), style);
      const double margin = (slot - digit.width()) / 2;
      parts_.push_back({std::move(digit), x + margin});
      x += slot + style.trackingPt;
      ++at;
      continue;
    }
    const qsizetype end = std::find_if(text.cbegin() + at, text.cend(), isDigit) - text.cbegin();
    const QString words = text.mid(at, end - at);
    parts_.push_back({TextLine(words, style), x});
    x += advance(words, style);
    at = end;
  }
  width_ = x - style.trackingPt;

  if (slot == 0 || width_ > maxWidth) {
    TextLine line(text, style, maxWidth);
    width_ = line.width();
    parts_.assign(1, {std::move(line), 0});
  }
}

void TabularText::draw(QPainter& painter, const QPointF& baselineLeft, const QColor& color) const {
  for (const Part& part : parts_) part.line.draw(painter, baselineLeft + QPointF(part.x, 0), color);
}

}  // namespace brisklet
