#pragma once

#include "model/ping.h"

#include <QList>

namespace brisklet {

/// A damped spring that follows a moving target: position and velocity stay continuous when the target
/// changes. Underdamped.
class Spring {
 public:
  /// Seconds that an undamped swing would take, and the share of critical damping.
  static constexpr double response = 0.58, dampingFraction = 0.84;

  Spring() = default;
  explicit Spring(double value) : target_(value) {}

  /// Heads for `target` from where the spring is at `nowMs`.
  void retarget(double target, double nowMs);

  [[nodiscard]] double target() const { return target_; }
  [[nodiscard]] double value(double nowMs) const;
  /// Units a second.
  [[nodiscard]] double velocity(double nowMs) const;
  /// Whether the spring stays within `tolerance` of its target from `nowMs` on.
  [[nodiscard]] bool settled(double nowMs, double tolerance) const;

 private:
  double target_ = 0;
  double startMs_ = 0;
  /// Distance from the target and velocity (units a second) at `startMs_`.
  double offset_ = 0, startVelocity_ = 0;
};

/// A card of the stack at one moment.
struct StackedCard {
  Ping ping;
  /// Points from the top of the stack to the card's top.
  double y = 0;
  /// 0 to 1.
  double opacity = 1;
};

/// The movement of the card stack: when the list of visible pings changes, the cards that stay move to their
/// new places, those that arrive fade in at theirs and those that leave fade out where they are. The times
/// that it is given are milliseconds of one clock that does not run back.
class CardStackAnimation {
 public:
  /// Shows these pings, newest first, at once and at rest.
  void reset(const QList<Ping>& pings);

  /// Moves to these pings, newest first. Pings are followed by their ids; a change of their texts alone is
  /// taken over without movement. Pings beyond the canvas may be left out.
  void update(const QList<Ping>& pings, double nowMs);

  /// The cards in drawing order: leaving ones, then the stack from its bottom to the newest.
  [[nodiscard]] QList<StackedCard> cards(double nowMs) const;

  /// Whether nothing moves or fades from `nowMs` on.
  [[nodiscard]] bool settled(double nowMs) const;

 private:
  struct Card {
    Ping ping;
    Spring y;
    Spring opacity;
    bool leaving = false;
  };
  void dropFaded(double nowMs);

  /// The stack, newest first, then the leaving cards, the latest to leave last.
  QList<Card> cards_;
};

}  // namespace brisklet
