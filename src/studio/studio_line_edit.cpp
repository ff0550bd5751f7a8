#include "studio/studio_line_edit.h"

#include <QInputMethodEvent>
#include <QPalette>
#include <QTextLayout>

#include "studio/palette.h"

namespace brisklet {

namespace {

/// What a line edit leaves empty on each side by itself.
constexpr int ownMargin = 2;
/// Texts longer than this are taken to hold no further scripts.
constexpr qsizetype measuredLength = 512;

}  // namespace

StudioLineEdit::StudioLineEdit(const TextStyle& style, int leftMargin, int rightMargin, QWidget* parent)
    : QLineEdit(parent), leftMargin_(leftMargin - ownMargin), rightMargin_(rightMargin - ownMargin) {
  setFrame(false);
  setFont(systemFont(style.sizePt, style.weight));
  setAttribute(Qt::WA_MacShowFocusRect, false);
  QPalette colors = palette();
  colors.setColor(QPalette::Base, Qt::transparent);
  colors.setColor(QPalette::Text, Studio::ink);
  colors.setColor(QPalette::PlaceholderText, Studio::placeholder);
  colors.setColor(QPalette::Highlight, Studio::textSelection);
  colors.setColor(QPalette::HighlightedText, Studio::ink);
  setPalette(colors);
  keepBaseline();
  connect(this, &QLineEdit::textChanged, this, [this] { keepBaseline(); });
}

void StudioLineEdit::showText(const QString& shown) {
  if (shown == text()) return;
  setText(shown);
  if (!hasFocus()) setCursorPosition(0);
}

void StudioLineEdit::inputMethodEvent(QInputMethodEvent* event) {
  QLineEdit::inputMethodEvent(event);
  keepBaseline(event->preeditString());
}

void StudioLineEdit::keepBaseline(const QString& composed) {
  QTextLayout layout(text().left(measuredLength) + composed, font());
  layout.beginLayout();
  const QTextLine line = layout.createLine();
  layout.endLayout();
  // A line edit centres the line's height, which depends on the fonts that its characters need. Room beyond
  // the bottom edge makes up for what is more than the height of the first font.
  const int more = line.isValid() ? qRound(line.ascent() + line.descent()) - fontMetrics().height() : 0;
  setTextMargins(leftMargin_, 0, rightMargin_, -more);
}

}  // namespace brisklet
