#pragma once

#include "drawing/fonts.h"

#include <QLineEdit>

namespace brisklet {

/// A line edit without a frame, in the studio's font and colours. Its text stands on one baseline whatever
/// scripts are in it. Line breaks and tabs that are pasted into it are blanks to everybody else, as they are
/// seen. When it is left it shows its beginning.
/// Keys that would do nothing to the text are its surroundings': undo without a history, say. So are Ctrl+D
/// and Ctrl+E, with which some desktops delete and go to the end.
class StudioLineEdit : public QLineEdit {
  Q_OBJECT

 public:
  /// The text begins and ends this far from the sides, in points.
  StudioLineEdit(const TextStyle& style, int leftMargin, int rightMargin, QWidget* parent = nullptr);

  /// Shows a text. The caret, the selection and the undo history stay when it is shown already.
  void showText(const QString& text);
  /// What was typed has been used: undo is no longer about it.
  void forgetHistory();
  /// Enter leaves the field.
  void leaveOnEnter();

 Q_SIGNALS:
  /// The user has changed the text, which is one line: typed, pasted, dictated.
  void lineEdited(const QString& line);

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void keepBaseline(const QString& composed = {});

  int leftMargin_, rightMargin_;
  bool isShowing_ = false;
};

}  // namespace brisklet
