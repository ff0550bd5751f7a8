#pragma once

#include "lockscreen/card_stack_animation.h"
#include "lockscreen/lock_screen_view.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

#include <QImage>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <optional>

namespace brisklet {

/// The lock screen on its backdrop, live: it follows the document and the player. It is repainted at the
/// display's pace while cards move, and not at all while nothing changes.
class Stage : public QWidget {
  Q_OBJECT

 public:
  explicit Stage(QWidget* parent = nullptr);

  void setDocument(const SequenceDocument& document);
  /// The player is not owned; the stage lets go of it when it is destroyed.
  void setPlayer(const SequencePlayer* player);
  /// Says something over the phone, until it is empty.
  void setNote(const QString& note);

 Q_SIGNALS:
  void cardPressed(const Ping& ping);
  /// A press beside the phone.
  void besidePressed();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  /// The ping whose card is at a point of the stage.
  [[nodiscard]] const Ping* pingAt(const QPointF& at) const;
  void paintNote(QPainter& painter) const;
  /// Has the photo read that the painting just done went without.
  void readPhoto();
  void setShownPings(QList<Ping> pings);
  /// Moves the cards towards what is visible now.
  void follow();
  void nextFrame();
  /// The phone and what it may colour at its edges.
  [[nodiscard]] QRect phoneArea() const;

  SequenceDocument document_;
  QPointer<const SequencePlayer> player_;
  LockScreenCache cache_;
  std::optional<WallpaperReading> reading_;
  CardStackAnimation animation_;
  QList<Ping> shownPings_;
  QString note_;
  QImage backdrop_;
  QTimer frames_;
};

}  // namespace brisklet
