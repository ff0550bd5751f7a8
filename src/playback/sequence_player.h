#pragma once

#include "model/sequence_document.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <limits>
#include <optional>

namespace brisklet {

/// The clock that plays a document in real time. Idle, it stands at positive infinity: the finished sequence.
/// Every property tells of a change only when its value differs. Confined to one thread, which needs an event
/// loop to play.
class SequencePlayer : public QObject {
  Q_OBJECT

 public:
  /// Milliseconds from any fixed moment, never going back.
  using ClockMs = std::function<double()>;

  static constexpr double finishedMs = std::numeric_limits<double>::infinity();

  explicit SequencePlayer(SequenceDocument document, ClockMs clock = steadyClockMs,
                          QObject* parent = nullptr);

  /// Milliseconds since the run started; `finishedMs` stands for the finished sequence.
  [[nodiscard]] double elapsedMs() const { return elapsedMs_; }
  /// Moves the picture to a moment. During a run the next tick overwrites it.
  void setElapsedMs(double elapsedMs);

  [[nodiscard]] bool isPlaying() const { return isPlaying_; }

  [[nodiscard]] const SequenceDocument& document() const { return document_; }
  /// Neither starts nor stops anything: a run goes on over the new document, to the end that it had at
  /// `play`.
  void setDocument(SequenceDocument document);

  /// Starts a run from the beginning, also during a run.
  void play();

  /// Ends the run, if there is one, and leaves `elapsedMs` where it is.
  void stop();

  /// Looks at the clock once. The player's own timer does this 60 times a second during a run.
  void tick();

  [[nodiscard]] static double steadyClockMs();

 Q_SIGNALS:
  void elapsedMsChanged();
  void isPlayingChanged();
  void documentChanged();

 private:
  void setIsPlaying(bool isPlaying);
  void scheduleTick();

  double elapsedMs_ = finishedMs;
  bool isPlaying_ = false;
  std::optional<double> startMs_;
  double runLengthMs_ = 0;
  QTimer timer_;
  SequenceDocument document_;
  ClockMs clock_;
};

}  // namespace brisklet
