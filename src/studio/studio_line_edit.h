#pragma once

#include <QLineEdit>

#include "platform/fonts.h"

namespace brisklet {

/// A line edit without a frame, in the studio's font and colours. Its text stands on one baseline whatever
/// scripts are in it.
class StudioLineEdit : public QLineEdit {
  Q_OBJECT

 public:
  /// The text begins and ends this far from the sides, in points.
  StudioLineEdit(const TextStyle& style, int leftMargin, int rightMargin, QWidget* parent = nullptr);

  /// Shows a text. The caret, the selection and the undo history stay when it is shown already.
  void showText(const QString& text);

 protected:
  void inputMethodEvent(QInputMethodEvent* event) override;

 private:
  void keepBaseline(const QString& composed = {});

  int leftMargin_, rightMargin_;
};

}  // namespace brisklet
