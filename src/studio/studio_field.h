#pragma once

#include <QLineEdit>
#include <QWidget>

#include "studio/studio_text.h"

namespace brisklet {

/// Makes a line edit a field of the studio: no frame, the system font, the studio's colours.
void styleLineEdit(QLineEdit& edit, const TextStyle& style);

/// A titled text field. It shows the text that it is given and tells every edit; it keeps none of its own.
class StudioField : public QWidget {
  Q_OBJECT

 public:
  /// Points.
  static constexpr int spacing = 6, boxHeight = 34, margin = 10, radius = 7;

  explicit StudioField(const QString& title, QWidget* parent = nullptr);

  /// Shows a text. The caret, the selection and the undo history stay when it is shown already.
  void setText(const QString& text);
  [[nodiscard]] QLineEdit* edit() const { return edit_; }

  [[nodiscard]] QSize sizeHint() const override;

 Q_SIGNALS:
  void textEdited(const QString& text);
  /// The caret has left, or Enter was pressed.
  void editingFinished();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  StudioText* title_;
  QLineEdit* edit_;
};

}  // namespace brisklet
