#include "studio/window_frame.h"

#include "desktop/window_manager.h"
#include "studio/controls/accessibility.h"
#include "studio/controls/palette.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace brisklet {

namespace {

constexpr QColor hairlineColor = Studio::srgb(0, 0, 0, 0.1);

Qt::CursorShape cursorFor(Qt::Edges edges) {
  if (edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge))
    return Qt::SizeFDiagCursor;
  if (edges == (Qt::TopEdge | Qt::RightEdge) || edges == (Qt::BottomEdge | Qt::LeftEdge))
    return Qt::SizeBDiagCursor;
  return edges & (Qt::LeftEdge | Qt::RightEdge) ? Qt::SizeHorCursor : Qt::SizeVerCursor;
}

/// A strip along the window's edge. Only a hairline of it is seen, which sets the window off from what is
/// behind it.
class Grip : public QWidget {
 public:
  Grip(Qt::Edges edges, QWidget* window) : QWidget(window), edges_(edges) {
    setCursor(cursorFor(edges));
    setAttribute(Qt::WA_NoSystemBackground);
    hideFromAccessibility(this);
  }

  [[nodiscard]] Qt::Edges edges() const { return edges_; }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const double pixel = 1 / painter.deviceTransform().m11();
    QRectF hairline = rect();
    if (edges_ == Qt::LeftEdge || edges_ == Qt::RightEdge) hairline.setWidth(pixel);
    if (edges_ == Qt::TopEdge || edges_ == Qt::BottomEdge) hairline.setHeight(pixel);
    if (edges_ == Qt::RightEdge) hairline.moveRight(width());
    if (edges_ == Qt::BottomEdge) hairline.moveBottom(height());
    if (hairline != rect()) painter.fillRect(hairline, hairlineColor);
  }
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return;
    heldAt_ = event->globalPosition().toPoint();
    start_ = window()->geometry();
    systemResizes_ = false;
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (!heldAt_ || systemResizes_) return;
    const QPoint by = event->globalPosition().toPoint() - *heldAt_;
    if (by.isNull()) return;
    systemResizes_ = window()->windowHandle()->startSystemResize(edges_);
    if (!systemResizes_) window()->setGeometry(resized(by));
  }
  void mouseReleaseEvent(QMouseEvent*) override { heldAt_.reset(); }

 private:
  [[nodiscard]] QRect resized(const QPoint& by) const {
    const QSize least = window()->minimumSize();
    QRect next = start_;
    if (edges_ & Qt::LeftEdge)
      next.setLeft(std::min(start_.left() + by.x(), start_.right() + 1 - least.width()));
    if (edges_ & Qt::RightEdge)
      next.setRight(std::max(start_.right() + by.x(), start_.left() - 1 + least.width()));
    if (edges_ & Qt::TopEdge)
      next.setTop(std::min(start_.top() + by.y(), start_.bottom() + 1 - least.height()));
    if (edges_ & Qt::BottomEdge)
      next.setBottom(std::max(start_.bottom() + by.y(), start_.top() - 1 + least.height()));
    return next;
  }

  Qt::Edges edges_;
  std::optional<QPoint> heldAt_;
  QRect start_;
  bool systemResizes_ = false;
};

}  // namespace

WindowFrame::WindowFrame(QWidget* window) : QObject(window), window_(window) {
  window->setWindowFlag(Qt::FramelessWindowHint);
  window->installEventFilter(this);
  // Corners last: they lie over the ends of the edges.
  for (const Qt::Edges edges :
       {Qt::Edges(Qt::LeftEdge), Qt::Edges(Qt::RightEdge), Qt::Edges(Qt::TopEdge), Qt::Edges(Qt::BottomEdge),
        Qt::TopEdge | Qt::LeftEdge, Qt::TopEdge | Qt::RightEdge, Qt::BottomEdge | Qt::LeftEdge,
        Qt::BottomEdge | Qt::RightEdge})
    grips_.append(new Grip(edges, window));
}

void WindowFrame::drag(const QPoint& from, const QPoint& to) {
  if (draggedFrom_ != from) {
    draggedFrom_ = from;
    startPosition_ = window_->pos();
    systemMoves_ = window_->windowHandle()->startSystemMove();
  }
  if (!systemMoves_ && !isZoomed()) window_->move(startPosition_ + to - from);
}

bool WindowFrame::isZoomed() const {
  return window_->isMaximized() || isZoomedByItself_;
}

void WindowFrame::toggleZoom() {
  if (isZoomedByItself_) {
    isZoomedByItself_ = false;
    window_->setGeometry(normalGeometry_);
    Q_EMIT zoomedChanged();
  } else if (window_->isMaximized()) {
    window_->showNormal();
  } else if (lacksWindowManager()) {
    zoomByItself();
  } else {
    window_->showMaximized();
  }
}

void WindowFrame::zoomByItself() {
  normalGeometry_ = window_->geometry();
  isZoomedByItself_ = true;
  window_->setGeometry(window_->screen()->availableGeometry());
  Q_EMIT zoomedChanged();
}

bool WindowFrame::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Show:
      placeGrips();
      break;
    case QEvent::WindowStateChange:
      placeGrips();
      Q_EMIT zoomedChanged();
      break;
    default:
      break;
  }
  return false;
}

void WindowFrame::placeGrips() {
  const int width = window_->width(), height = window_->height();
  for (QWidget* each : grips_) {
    const Qt::Edges edges = static_cast<Grip*>(each)->edges();
    const bool isCorner =
        (edges & (Qt::LeftEdge | Qt::RightEdge)) && (edges & (Qt::TopEdge | Qt::BottomEdge));
    QRect place(0, 0, isCorner ? cornerReach : width, isCorner ? cornerReach : height);
    if (!isCorner && (edges & (Qt::LeftEdge | Qt::RightEdge))) place.setWidth(edgeWidth);
    if (!isCorner && (edges & (Qt::TopEdge | Qt::BottomEdge))) place.setHeight(edgeWidth);
    if (edges & Qt::RightEdge) place.moveRight(width - 1);
    if (edges & Qt::BottomEdge) place.moveBottom(height - 1);
    each->setGeometry(place);
    each->setVisible(!isZoomed());
    each->raise();
  }
}

}  // namespace brisklet
