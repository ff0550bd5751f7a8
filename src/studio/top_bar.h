#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QWidget>
#include <optional>

namespace brisklet {

class StudioButton;
class StudioLineEdit;
class StudioText;
class WindowButton;

/// The bar at the top of the window: the document's title, what the sequence comes to, the commands, and the
/// buttons that the window's frame would have. It takes hold of the window as a frame's title bar does.
class TopBar : public QWidget {
  Q_OBJECT

 public:
  static constexpr int barHeight = 52, margin = 16, spacing = 12, logoSize = 22, logoSpacing = 8,
                       titleWidth = 280;  // points

  struct State {
    QString title;
    QString summary;
    bool isPlaying = false;
    bool canPlay = false;
    bool canExport = false;
    /// How far the running export is, 0 to 1; nothing when none runs.
    std::optional<double> exportProgress;
  };

  explicit TopBar(QWidget* parent = nullptr);

  void setState(const State& state);
  void setZoomed(bool zoomed);

 Q_SIGNALS:
  void titleEdited(const QString& title);
  void titleFinished();
  void newPressed();
  void playPressed();
  void exportPressed();
  void minimisePressed();
  void zoomPressed();
  void closePressed();
  /// The bar is dragged: where it was taken hold of and where the pointer is, on the screen.
  void dragged(const QPoint& from, const QPoint& to);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();
  void paintLogo(QPainter& painter) const;

  QImage logo_;
  StudioLineEdit* title_;
  StudioText* percentage_;
  StudioText* summary_;
  StudioButton* new_;
  StudioButton* play_;
  StudioButton* export_;
  WindowButton* minimise_;
  WindowButton* zoom_;
  WindowButton* close_;
  std::optional<QPoint> heldAt_;
  bool isDragging_ = false;
};

}  // namespace brisklet
