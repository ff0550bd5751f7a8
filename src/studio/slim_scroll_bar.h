#pragma once

#include <QWidget>
#include <optional>

class QScrollBar;

namespace brisklet {

/// A scroll bar that lies over the content at its right edge and takes no room. It stands in for a bar that
/// is not shown, and is only there while there is something to scroll to.
class SlimScrollBar : public QWidget {
  Q_OBJECT

 public:
  static constexpr int barWidth = 12;  // points, of which the thumb takes half

  SlimScrollBar(QScrollBar* bar, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  [[nodiscard]] QRectF thumb() const;

  QScrollBar* bar_;
  /// Where the thumb was taken hold of, from its top.
  std::optional<double> heldAt_;
};

}  // namespace brisklet
