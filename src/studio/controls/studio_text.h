#pragma once

#include "drawing/text_line.h"
#include "studio/controls/tabular_text.h"

#include <QColor>
#include <QLabel>

namespace brisklet {

enum class LetterCase { AsWritten, Upper };

/// A line of text in the studio, at the left of its widget and cut where it does not fit. Numbers are
/// tabular. A label to assistive technology, with the text as written.
class StudioText : public QLabel {
  Q_OBJECT

 public:
  StudioText(const TextStyle& style, const QColor& color, QWidget* parent = nullptr,
             LetterCase letterCase = LetterCase::AsWritten);

  /// Hides `QLabel::setText`, which would not set the line anew.
  void setText(const QString& text);

  /// Puts the text on the baseline of neighbours of the same height that have this style.
  void standWith(const TextStyle& style);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QString shownText() const;

  TextStyle style_;
  QColor color_;
  LetterCase letterCase_;
  TextStyle baselineStyle_;
  TabularText line_;
};

/// The title of a section.
class StudioLabel : public StudioText {
  Q_OBJECT

 public:
  explicit StudioLabel(const QString& text, QWidget* parent = nullptr);
};

}  // namespace brisklet
