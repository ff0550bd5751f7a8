#pragma once

#include "lockscreen/card_stack_animation.h"
#include "lockscreen/lock_screen_view.h"
#include "model/sequence_document.h"
#include "playback/sequence_player.h"

#include <QImage>
#include <QPointer>
#include <QTimer>
#include <QWidget>

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

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void setShownPings(QList<Ping> pings);
  /// Moves the cards towards what is visible now.
  void follow();
  void nextFrame();
  /// The phone and what it may colour at its edges.
  [[nodiscard]] QRect phoneArea() const;

  SequenceDocument document_;
  QPointer<const SequencePlayer> player_;
  LockScreenCache cache_;
  CardStackAnimation animation_;
  QList<Ping> shownPings_;
  QImage backdrop_;
  QTimer frames_;
};

}  // namespace brisklet
