#include "drawing/text_line.h"

#include "base/graphemes.h"
#include "drawing/emoji.h"

#include <QFontMetricsF>
#include <QTextCharFormat>
#include <QTextOption>
#include <algorithm>

using namespace Qt::StringLiterals;

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
    const auto ends = graphemeEnds(line.text);
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

/// Sets Han characters in their Japanese forms if there is kana in the text: they are Chinese ones otherwise.
void appendJapaneseFormats(const QString& text, const QFont& font, QList<QTextLayout::FormatRange>& formats) {
  const auto isKana = [](QChar c) {
    return c.script() == QChar::Script_Hiragana || c.script() == QChar::Script_Katakana;
  };
  if (std::none_of(text.begin(), text.end(), isKana)) return;
  QFont japanese = font;
  japanese.setFamilies(QStringList(u"Noto Sans CJK JP"_s) + font.families());
  QTextCharFormat format;
  format.setFont(japanese);
  const auto isJapanese = [&](QChar c) { return isKana(c) || c.script() == QChar::Script_Han; };
  for (auto begin = text.begin(), end = begin; end != text.end();) {
    begin = std::find_if(end, text.end(), isJapanese);
    end = std::find_if_not(begin, text.end(), isJapanese);
    if (begin != end)
      formats.append({static_cast<int>(begin - text.begin()), static_cast<int>(end - begin), format});
  }
}

/// Raises the colons between digits, as in a time of day, to the middle of their height.
void appendRaisedColons(const QString& text, const QFont& font, QList<QTextLayout::FormatRange>& formats) {
  for (qsizetype at = text.indexOf(u':', 1); at > 0 && at + 1 < text.size();
       at = text.indexOf(u':', at + 1)) {
    if (!text[at - 1].isDigit() || !text[at + 1].isDigit()) continue;
    const QFontMetricsF metrics(font);
    const auto middle = [&](QChar c) { return metrics.tightBoundingRect(c).center().y(); };
    QTextCharFormat format;
    format.setBaselineOffset(100 * (middle(u':') - middle(text[at - 1])) / metrics.height());
    formats.append({static_cast<int>(at), 1, format});
  }
}

/// A layout of the text that has no lines yet.
std::unique_ptr<QTextLayout> begunLayout(const QString& text, const QFont& font,
                                         QTextOption::WrapMode wrapping) {
  TextWithEmoji shown = withColorEmoji(text, font);
  appendJapaneseFormats(shown.text, font, shown.formats);
  appendRaisedColons(shown.text, font, shown.formats);
  auto layout = std::make_unique<QTextLayout>(shown.text, font);
  QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
  option.setTextDirection(Qt::LayoutDirectionAuto);
  option.setWrapMode(wrapping);
  layout->setTextOption(option);
  layout->setFormats(shown.formats);
  layout->setCacheEnabled(true);
  layout->beginLayout();
  return layout;
}

std::unique_ptr<QTextLayout> lineLayout(const QString& text, const QFont& font) {
  auto layout = begunLayout(text, font, QTextOption::NoWrap);
  QTextLine line = layout->createLine();
  line.setLineWidth(1e6);
  line.setPosition({0, -line.ascent()});
  layout->endLayout();
  return layout;
}

/// Draws a layout with its origin at `at`.
void drawLayout(QPainter& painter, const QTextLayout& layout, double scale, const QPointF& at,
                const QColor& color) {
  painter.save();
  painter.translate(at);
  painter.scale(scale, scale);
  // Coloured glyphs take no colour from the pen, and no transparency either.
  painter.setOpacity(painter.opacity() * color.alphaF());
  painter.setPen(QColor(color.rgb()));
  layout.draw(&painter, QPointF());
  painter.restore();
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
  CutText line =
      firstLine(text, most < static_cast<double>(maxLength) ? static_cast<qsizetype>(most) : maxLength);

  const LayoutFont font = layoutFont(style);
  std::unique_ptr<QTextLayout> layout;
  const auto fits = [&](const QString& candidate) {
    layout = lineLayout(candidate, font.font);
    width_ = layout->lineAt(0).naturalTextWidth() / font.unitsPerPoint - style.trackingPt;
    return width_ <= maxWidth + widthSlack;
  };

  if (line.text.isEmpty() && !line.isCut) return;
  if (line.isCut || !fits(line.text)) {
    elided_ = true;
    std::vector<qsizetype> ends = graphemeEnds(line.text);
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
  if (layout_)
    drawLayout(painter, *layout_, style_.sizePt / layout_->font().pixelSize(), baselineLeft, color);
}

qsizetype firstLineLength(const QString& text, const TextStyle& style, double maxWidth) {
  if (text.isEmpty()) return 0;
  const LayoutFont font = layoutFont(style);
  const auto layout = begunLayout(text, font.font, QTextOption::WrapAtWordBoundaryOrAnywhere);
  QTextLine line = layout->createLine();
  line.setLineWidth(maxWidth * font.unitsPerPoint);
  layout->endLayout();
  // Selectors of emoji style are in the text but not in the layout.
  const QString shown = layout->text();
  qsizetype length = 0;
  for (qsizetype i = 0; i < line.textLength(); ++length) i += text[length] == shown[i];
  while (length < text.size() && (length == 0 || text[length] == QChar(0xfe0f))) ++length;
  return length;
}

TextBlock::TextBlock(const QString& text, const TextStyle& style, double maxWidth) : style_(style) {
  if (!(style.sizePt > 0) || !(maxWidth > 0)) return;
  QString all = drawable(text, maxLength);
  all.replace(u"\r\n"_s, u"\n"_s);
  std::replace_if(all.begin(), all.end(), isLineBreak, QChar(QChar::LineSeparator));
  if (all.isEmpty()) return;

  const LayoutFont font = layoutFont(style);
  // The tracking after a line's last character does not count.
  const double tracking = style.trackingPt * font.unitsPerPoint;
  const double widest = std::min(1e6, (maxWidth + widthSlack) * font.unitsPerPoint + tracking);
  auto layout = begunLayout(all, font.font, QTextOption::WrapAtWordBoundaryOrAnywhere);
  double baseline = QFontMetricsF(font.font).ascent();
  for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
    line.setLineWidth(widest);
    const double width = line.naturalTextWidth() - tracking;
    line.setPosition({-width / 2, baseline - line.ascent()});
    baseline += lineHeight(style) * font.unitsPerPoint;
    width_ = std::max(width_, width / font.unitsPerPoint);
  }
  layout->endLayout();
  layout_ = std::move(layout);
}

int TextBlock::lineCount() const {
  return layout_ ? std::max(1, layout_->lineCount()) : 1;
}

QSizeF TextBlock::size() const {
  return {width_, lineCount() * lineHeight(style_)};
}

void TextBlock::draw(QPainter& painter, const QPointF& topCenter, const QColor& color) const {
  if (layout_) drawLayout(painter, *layout_, style_.sizePt / layout_->font().pixelSize(), topCenter, color);
}

}  // namespace brisklet
