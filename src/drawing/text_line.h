#pragma once

#include "drawing/fonts.h"

#include <QColor>
#include <QPainter>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QTextLayout>
#include <limits>
#include <memory>

namespace brisklet {

/// The height of a line of this style and the height of its baseline, in points; the same for every text,
/// whatever other fonts its characters need.
[[nodiscard]] double lineHeight(const TextStyle& style);
[[nodiscard]] double lineAscent(const TextStyle& style);

/// One line of text, shaped once and drawn any number of times. A text of several lines shows its first;
/// what does not fit `maxWidth` is cut between characters, as a reader sees them, and ends in an ellipsis on
/// the side that the text runs to. Controls are dropped and broken characters are replaced, so that any
/// string can be given. In points, at the scale of the painter; for the UI thread.
class TextLine {
 public:
  TextLine() = default;
  TextLine(const QString& text, const TextStyle& style,
           double maxWidth = std::numeric_limits<double>::infinity());

  /// From the first character's origin to the end of the last one's advance, without its tracking.
  [[nodiscard]] double width() const { return width_; }
  [[nodiscard]] double ascent() const { return lineAscent(style_); }
  [[nodiscard]] double height() const { return lineHeight(style_); }
  [[nodiscard]] bool isElided() const { return elided_; }

  void draw(QPainter& painter, const QPointF& baselineLeft, const QColor& color) const;

 private:
  // Shared by the copies of a line, which differ in nothing: a laid out text cannot be copied.
  std::shared_ptr<const QTextLayout> layout_;
  TextStyle style_;
  double width_ = 0;
  bool elided_ = false;
};

/// How much of a text that is to be broken between words, or anywhere in a word that is too long by itself,
/// goes into its first line: UTF-16 units, at least one of a text that is not empty.
[[nodiscard]] qsizetype firstLineLength(const QString& text, const TextStyle& style, double maxWidth);

/// Centred lines of text, broken between words, or anywhere in a word that is too long by itself.
class TextBlock {
 public:
  TextBlock() = default;
  TextBlock(const QString& text, const TextStyle& style, double maxWidth);

  /// The width of the widest line, and the height of all lines; an empty text is one line high.
  [[nodiscard]] QSizeF size() const;
  [[nodiscard]] int lineCount() const;

  /// Draws the lines downwards from `topCenter`, each centred on it.
  void draw(QPainter& painter, const QPointF& topCenter, const QColor& color) const;

 private:
  std::shared_ptr<const QTextLayout> layout_;  // shared as that of a line is
  TextStyle style_;
  double width_ = 0;
};

}  // namespace brisklet
