#include "platform/text_line.h"

#include <QFontMetricsF>
#include <QTextBoundaryFinder>
#include <QTextOption>
#include <algorithm>
#include <cmath>

namespace brisklet {

namespace {

/// No line shows more UTF-16 units than this, however narrow they are.
constexpr qsizetype maxLength = 4096;
constexpr QChar ellipsis(0x2026);
/// Slack in comparisons of widths, so that a text fits its own natural width.
constexpr double widthSlack = 0.01;  // pt

bool isLineBreak(QChar c) {
  switch (c.unicode()) {
    case 0x0a:
    case 0x0b:
    case 0x0c:
    case 0x0d:
    case 0x85:
    case 0x2028:
    case 0x2029:
      return true;
    default:
      return false;
  }
}

/// Where each character, as a reader sees it, ends: ascending, the last at the text's size.
std::vector<qsizetype> characterEnds(const QString& text) {
  std::vector<qsizetype> ends;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  for (qsizetype at = finder.toNextBoundary(); at > 0; at = finder.toNextBoundary()) ends.push_back(at);
  return ends;
}

/// The text with all in it that cannot be drawn dropped or replaced, line breaks kept; not longer than
/// `limit` by more than a surrogate.
QString drawable(QStringView text, qsizetype limit) {
  QString result;
  result.reserve(std::min(text.size(), limit + 1));
  for (qsizetype i = 0; i < text.size() && result.size() < limit; ++i) {
    const QChar c = text[i];
    if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      result += c;
      result += text[++i];
    } else if (c.isSurrogate() || c == QChar::ObjectReplacementCharacter) {
      result += QChar(QChar::ReplacementCharacter);
    } else if (c == u'\t') {
      result += u' ';
    } else if (c.category() != QChar::Other_Control || isLineBreak(c)) {
      result += c;
    }
  }
  return result;
}

struct CutText {
  QString text;
  bool isCut = false;  // something that could be drawn was left out
};

/// The first line of the text, not longer than `limit`.
CutText firstLine(const QString& text, qsizetype limit) {
  CutText line;
  const auto lineEnd = std::find_if(text.cbegin(), text.cend(), isLineBreak);
  const qsizetype length = lineEnd - text.cbegin();
  line.text = drawable(QStringView(text).left(length), limit);
  if (line.text.size() >= limit && length > limit) {
    const auto ends = characterEnds(line.text);
    // The last character may go on beyond the limit.
    if (ends.size() > 1) line.text.truncate(ends[ends.size() - 2]);
    line.isCut = true;
  }
  line.isCut = line.isCut || std::any_of(lineEnd, text.cend(), [](QChar c) { return !c.isSpace(); });
  return line;
}

void removeTrailingSpace(QString& text) {
  while (!text.isEmpty() && text.back().isSpace()) text.chop(1);
}

std::unique_ptr<QTextLayout> laidOut(const QString& text, const QFont& font) {
  auto layout = std::make_unique<QTextLayout>(text, font);
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  option.setWrapMode(QTextOption::NoWrap);
  layout->setTextOption(option);
  layout->setCacheEnabled(true);
  layout->beginLayout();
  QTextLine line = layout->createLine();
  line.setLineWidth(1e6);
  layout->endLayout();
  return layout;
}

}  // namespace

double lineHeight(const TextStyle& style) {
  const LayoutFont font = layoutFont(style);
  const QFontMetricsF metrics(font.font);
  return (metrics.ascent() + metrics.descent()) / font.unitsPerPoint;
}

double lineAscent(const TextStyle& style) {
  const LayoutFont font = layoutFont(style);
  return QFontMetricsF(font.font).ascent() / font.unitsPerPoint;
}

TextLine::TextLine(const QString& text, const TextStyle& style, double maxWidth) : style_(style) {
  if (!(style.sizePt > 0) || !(maxWidth > 0)) return;
  // Eight characters in the width of an em is more than any text has.
  const double most = 64 + 8 * maxWidth / style.sizePt;
  CutText line = firstLine(text, most < double(maxLength) ? static_cast<qsizetype>(most) : maxLength);

  const LayoutFont font = layoutFont(style);
  std::unique_ptr<QTextLayout> layout;
  const auto fits = [&](const QString& candidate) {
    layout = laidOut(candidate, font.font);
    width_ = layout->lineAt(0).naturalTextWidth() / font.unitsPerPoint - style.trackingPt;
    return width_ <= maxWidth + widthSlack;
  };

  if (line.text.isEmpty() && !line.isCut) return;
  if (line.isCut || !fits(line.text)) {
    elided_ = true;
    std::vector<qsizetype> ends = characterEnds(line.text);
    ends.insert(ends.begin(), 0);
    const auto elided = [&](qsizetype end) {
      QString start = line.text.left(end);
      removeTrailingSpace(start);
      return start + ellipsis;
    };
    // The first end that is too far; the one before it is taken.
    auto tooFar =
        std::partition_point(ends.begin(), ends.end(), [&](qsizetype end) { return fits(elided(end)); });
    if (tooFar == ends.begin()) {
      width_ = 0;
      return;
    }
    // Shaping may make a shorter text wider.
    while (!fits(elided(*--tooFar)) && tooFar != ends.begin()) {
    }
  }
  layout_ = std::move(layout);
}

void TextLine::draw(QPainter& painter, const QPointF& baselineLeft, const QColor& color) const {
  if (!layout_) return;
  const double scale = style_.sizePt / layout_->font().pixelSize();
  painter.save();
  painter.translate(baselineLeft);
  painter.scale(scale, scale);
  // Coloured glyphs take no colour from the pen, and no transparency either.
  painter.setOpacity(painter.opacity() * color.alphaF());
  painter.setPen(QColor(color.rgb()));
  layout_->draw(&painter, QPointF(0, -layout_->lineAt(0).ascent()));
  painter.restore();
}

TextBlock::TextBlock(const QString& text, const TextStyle& style, double maxWidth) : style_(style) {
  if (!(style.sizePt > 0) || !(maxWidth > 0)) return;
  QString all = drawable(text, maxLength);
  all.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  std::replace_if(all.begin(), all.end(), isLineBreak, QChar(QChar::LineSeparator));

  const LayoutFont font = layoutFont(style);
  QTextLayout layout(all, font.font);
  QTextOption option;
  option.setTextDirection(Qt::LayoutDirectionAuto);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  layout.setTextOption(option);
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    // The tracking after a line's last character does not count.
    line.setLineWidth((maxWidth + style.trackingPt + widthSlack) * font.unitsPerPoint);
    QString part = all.mid(line.textStart(), line.textLength());
    removeTrailingSpace(part);
    lines_.emplace_back(part, style);
  }
  layout.endLayout();
}

QSizeF TextBlock::size() const {
  double width = 0;
  for (const TextLine& line : lines_) width = std::max(width, line.width());
  return {width, static_cast<double>(std::max<std::size_t>(1, lines_.size())) * lineHeight(style_)};
}

void TextBlock::draw(QPainter& painter, const QPointF& topCenter, const QColor& color) const {
  const double height = lineHeight(style_);
  double baseline = topCenter.y() + lineAscent(style_);
  for (const TextLine& line : lines_) {
    line.draw(painter, {topCenter.x() - line.width() / 2, baseline}, color);
    baseline += height;
  }
}

}  // namespace brisklet
