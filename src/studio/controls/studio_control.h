#pragma once

#include <QAbstractButton>

namespace brisklet {

/// What all buttons and chips of the studio share: they are painted by themselves, Space and Enter press
/// them, the keyboard's focus is marked, and they look the same under the pointer.
class StudioControl : public QAbstractButton {
  Q_OBJECT

 public:
  StudioControl(double cornerRadius, QWidget* parent);

  [[nodiscard]] double cornerRadius() const { return cornerRadius_; }
  /// The tooltip, which is also the name for assistive technology.
  void setLabel(const QString& label);

  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

  [[nodiscard]] bool isHovered() const { return isEnabled() && underMouse(); }
  /// What is laid over the control under the pointer or while it is pressed; transparent at rest.
  [[nodiscard]] QColor veil() const;

 private:
  double cornerRadius_;
};

}  // namespace brisklet
