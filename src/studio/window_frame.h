#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QWidget>
#include <optional>

namespace brisklet {

/// Does for a window without a frame what a frame does: moving, resizing at its edges, zooming. The system
/// does it where it can; without a window manager the window does it by itself.
class WindowFrame : public QObject {
  Q_OBJECT

 public:
  /// Points along the window's edges, and from its corners, that resize it.
  static constexpr int edgeWidth = 5, cornerReach = 14;

  /// Belongs to the window, which then has no frame of the system's.
  explicit WindowFrame(QWidget* window);

  /// The window is dragged from one point of the screen to another; called with every motion.
  void drag(const QPoint& from, const QPoint& to);
  void toggleZoom();
  [[nodiscard]] bool isZoomed() const;

 Q_SIGNALS:
  void zoomedChanged();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void placeGrips();
  /// Fills the screen without the help of a window manager.
  void zoomByItself();

  QWidget* window_;
  QList<QWidget*> grips_;
  std::optional<QPoint> draggedFrom_;
  QPoint startPosition_;
  bool systemMoves_ = false;
  QRect normalGeometry_;
  bool isZoomedByItself_ = false;
};

}  // namespace brisklet
