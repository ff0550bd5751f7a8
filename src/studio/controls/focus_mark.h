#pragma once

#include <QPointer>
#include <QWidget>
#include <optional>

namespace brisklet {

/// Marks a control, or a part of it, that has come into focus by the keyboard with a ring around it. The ring
/// is drawn over the control's surroundings, so that nothing moves for it.
class FocusMark : public QObject {
  Q_OBJECT

 public:
  /// Points between control and ring, and the ring's width.
  static constexpr int gap = 1, width = 2;

  /// Belongs to the control, whose corners have this radius.
  FocusMark(QWidget* control, double cornerRadius);
  ~FocusMark() override;

  /// The part of the control that the ring goes around; all of it at first.
  void setArea(const QRect& area);
  /// Whether the focus is the keyboard's; a change of focus decides by itself.
  void setByKeyboard(bool byKeyboard);
  [[nodiscard]] bool isShown() const { return ring_ && !ring_->isHidden(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void update();
  void place();

  QWidget* control_;
  double cornerRadius_;
  std::optional<QRect> area_;
  bool byKeyboard_ = false;
  /// Made when it is first needed. A child of what it is drawn over, which may go first.
  QPointer<QWidget> ring_;
};

}  // namespace brisklet
