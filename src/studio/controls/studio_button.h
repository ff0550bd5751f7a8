#pragma once

#include "drawing/text_line.h"
#include "studio/controls/studio_control.h"

#include <QString>

namespace brisklet {

enum class ButtonLook {
  Flat,
  Solid,
  Wide  // outlined, and as wide as its block
};

/// A button with a title.
class StudioButton : public StudioControl {
  Q_OBJECT

 public:
  /// Points.
  static constexpr int buttonHeight = 32, wideHeight = 34, radius = 7, spacing = 6, flatMargin = 10,
                       solidMargin = 12;

  static constexpr TextStyle titleStyle{13, FontWeight::Medium};

  /// An empty symbol name means no symbol.
  StudioButton(const QString& title, const QString& systemImage, ButtonLook look, QWidget* parent = nullptr);

  void setTitle(const QString& title);
  /// Enables or disables the button. One that is disabled while it has the keyboard's focus leaves it to
  /// nobody, instead of to its neighbour, which the next key would press, and takes it back in time.
  void setUsable(bool usable);

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString systemImage_;
  ButtonLook look_;
  TextLine line_;
  bool wantsFocusBack_ = false;
};

}  // namespace brisklet
