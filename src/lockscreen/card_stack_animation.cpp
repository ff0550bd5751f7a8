#include "lockscreen/card_stack_animation.h"

#include "lockscreen/lock_screen_layout.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brisklet {
namespace {

constexpr double angularFrequency = 2 * std::numbers::pi / Spring::response;
constexpr double decay = Spring::dampingFraction * angularFrequency;
/// angularFrequency * sqrt(1 - dampingFraction^2): std::sqrt is not constant-evaluated.
const double dampedFrequency =
    angularFrequency * std::sqrt(1 - Spring::dampingFraction * Spring::dampingFraction);

/// A tenth of a device pixel on the densest screen, and less than one step of an 8-bit channel.
constexpr double restDistance = 0.03, restOpacity = 0.002;

double placeOf(qsizetype index) {
  return static_cast<double>(index) * (LockScreenMetrics::cardHeight + LockScreenMetrics::cardSpacing);
}

}  // namespace

void Spring::retarget(double target, double nowMs) {
  if (target == target_) return;
  const double now = value(nowMs);
  startVelocity_ = velocity(nowMs);
  offset_ = now - target;
  target_ = target;
  startMs_ = nowMs;
}

// The solution of x'' + 2 decay x' + angularFrequency^2 x = 0 for the distance x from the target:
// x = exp(-decay t) (offset cos wt + c sin wt), with c from the velocity at the start.
double Spring::value(double nowMs) const {
  const double t = std::max(0.0, nowMs - startMs_) / 1000;
  const double c = (startVelocity_ + decay * offset_) / dampedFrequency;
  return target_ +
         std::exp(-decay * t) * (offset_ * std::cos(dampedFrequency * t) + c * std::sin(dampedFrequency * t));
}

double Spring::velocity(double nowMs) const {
  const double t = std::max(0.0, nowMs - startMs_) / 1000;
  const double c = (startVelocity_ + decay * offset_) / dampedFrequency;
  const double cosine = std::cos(dampedFrequency * t);
  const double sine = std::sin(dampedFrequency * t);
  return std::exp(-decay * t) *
         ((dampedFrequency * c - decay * offset_) * cosine - (dampedFrequency * offset_ + decay * c) * sine);
}

bool Spring::settled(double nowMs, double tolerance) const {
  const double t = std::max(0.0, nowMs - startMs_) / 1000;
  const double c = (startVelocity_ + decay * offset_) / dampedFrequency;
  return std::exp(-decay * t) * std::hypot(offset_, c) <= tolerance;
}

void CardStackAnimation::reset(const QList<Ping>& pings) {
  cards_.clear();
  for (qsizetype index = 0; index < pings.size(); ++index)
    cards_.append({pings[index], Spring(placeOf(index)), Spring(1)});
}

void CardStackAnimation::update(const QList<Ping>& pings, double nowMs) {
  dropFaded(nowMs);
  QList<Card> before = std::move(cards_);
  QList<Card> next;
  next.reserve(pings.size());
  for (qsizetype index = 0; index < pings.size(); ++index) {
    // Staying cards come before leaving ones, so an id that is there twice keeps to the stack.
    const auto known = std::find_if(before.begin(), before.end(),
                                    [&](const Card& card) { return card.ping.id == pings[index].id; });
    if (known == before.end()) {
      Card arriving{pings[index], Spring(placeOf(index)), Spring(0)};
      arriving.opacity.retarget(1, nowMs);
      next.append(std::move(arriving));
      continue;
    }
    Card card = std::move(*known);
    before.erase(known);
    card.ping = pings[index];
    card.leaving = false;
    card.y.retarget(placeOf(index), nowMs);
    card.opacity.retarget(1, nowMs);
    next.append(std::move(card));
  }
  std::stable_partition(before.begin(), before.end(), [](const Card& card) { return card.leaving; });
  for (Card& card : before) {
    card.leaving = true;
    card.opacity.retarget(0, nowMs);
    next.append(std::move(card));
  }
  cards_ = std::move(next);
}

QList<StackedCard> CardStackAnimation::cards(double nowMs) const {
  QList<StackedCard> drawn;
  drawn.reserve(cards_.size());
  for (auto card = cards_.crbegin(); card != cards_.crend(); ++card) {
    const bool still = card->y.settled(nowMs, restDistance);
    const bool steady = card->opacity.settled(nowMs, restOpacity);
    const double opacity = steady ? card->opacity.target() : std::clamp(card->opacity.value(nowMs), 0.0, 1.0);
    if (opacity <= 0) continue;
    drawn.append({card->ping, still ? card->y.target() : card->y.value(nowMs), opacity});
  }
  return drawn;
}

bool CardStackAnimation::settled(double nowMs) const {
  return std::all_of(cards_.begin(), cards_.end(), [nowMs](const Card& card) {
    return card.y.settled(nowMs, restDistance) && card.opacity.settled(nowMs, restOpacity);
  });
}

void CardStackAnimation::dropFaded(double nowMs) {
  cards_.removeIf(
      [nowMs](const Card& card) { return card.leaving && card.opacity.settled(nowMs, restOpacity); });
}

}  // namespace brisklet
