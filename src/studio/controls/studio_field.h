#pragma once

#include "studio/controls/studio_line_edit.h"
#include "studio/controls/studio_text.h"

#include <QWidget>

namespace brisklet {

/// A titled text field. It shows the text that it is given and tells every edit; it keeps none of its own.
class StudioField : public QWidget {
  Q_OBJECT

 public:
  /// Points.
  static constexpr int spacing = 6, boxHeight = 34, margin = 10, radius = 7;

  explicit StudioField(const QString& title, QWidget* parent = nullptr);

  void setText(const QString& text) { edit_->showText(text); }
  [[nodiscard]] StudioLineEdit* edit() const { return edit_; }

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
  StudioLineEdit* edit_;
};

}  // namespace brisklet
