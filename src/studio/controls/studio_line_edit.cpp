#include "studio/controls/studio_line_edit.h"

#include "studio/controls/palette.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QPalette>
#include <QTextLayout>
#include <algorithm>

namespace brisklet {

namespace {

/// What a line edit leaves empty on each side by itself.
constexpr int ownMargin = 2;
/// Texts longer than this are taken to hold no further scripts.
constexpr qsizetype measuredLength = 512;

QString inOneLine(QString text) {
  std::replace_if(
      text.begin(), text.end(),
      [](QChar c) {
        return (c.unicode() >= 0x09 && c.unicode() <= 0x0d) || c == QChar(0x85) ||
               c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
      },
      u' ');
  return text;
}

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
  // Not `textEdited`, which does not tell of what assistive technology sets.
  connect(this, &QLineEdit::textChanged, this, [this](const QString& changed) {
    keepBaseline();
    if (!isShowing_) Q_EMIT lineEdited(inOneLine(changed));
  });
}

void StudioLineEdit::showText(const QString& shown) {
  if (shown == inOneLine(text())) return;
  isShowing_ = true;
  setText(shown);
  isShowing_ = false;
  if (!hasFocus()) setCursorPosition(0);
}

void StudioLineEdit::forgetHistory() {
  isShowing_ = true;
  setText(text());
  isShowing_ = false;
}

void StudioLineEdit::leaveOnEnter() {
  connect(this, &QLineEdit::returnPressed, this, [this] { window()->setFocus(Qt::OtherFocusReason); });
}

bool StudioLineEdit::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const QKeyCombination keys = static_cast<QKeyEvent*>(event)->keyCombination();
    if (keys == (Qt::CTRL | Qt::Key_D) || keys == (Qt::CTRL | Qt::Key_E)) {
      event->ignore();
      return true;
    }
  }
  return QLineEdit::event(event);
}

void StudioLineEdit::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if ((event->matches(QKeySequence::Undo) && !isUndoAvailable()) ||
      (event->matches(QKeySequence::Redo) && !isRedoAvailable()) ||
      (event->matches(QKeySequence::Paste) && QGuiApplication::clipboard()->text().isEmpty()) ||
      (isEnter && event->isAutoRepeat()))
    event->ignore();
  else
    QLineEdit::keyPressEvent(event);
}

void StudioLineEdit::dragEnterEvent(QDragEnterEvent* event) {
  // The window takes photos, wherever they are dropped, and their names are text as well.
  if (event->mimeData()->hasUrls())
    event->ignore();
  else
    QLineEdit::dragEnterEvent(event);
}

void StudioLineEdit::inputMethodEvent(QInputMethodEvent* event) {
  QLineEdit::inputMethodEvent(event);
  keepBaseline(event->preeditString());
}

void StudioLineEdit::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // Another window, a menu or an alert gives the focus back, and the caret is to be where it was.
  if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
    setCursorPosition(0);
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
