#include "lockscreen/card_stack_animation.h"

#include "pictures.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

/// The card of the ping; at -1 if there is none.
StackedCard cardOf(const QList<StackedCard>& cards, const Ping& ping) {
  for (const StackedCard& card : cards) {
    if (card.ping.id == ping.id) return card;
  }
  return {ping, -1, -1};
}

/// Three pings, and their cards at rest 86 points apart.
struct CardStackAnimationTest : testing::Test {
  [[nodiscard]] StackedCard card(const Ping& ping, double atMs) const {
    return cardOf(animation.cards(atMs), ping);
  }
  void expectResting(const QList<Ping>& pings) const {
    const QList<StackedCard> cards = animation.cards(5000);
    ASSERT_EQ(cards.size(), pings.size());
    for (qsizetype i = 0; i < pings.size(); ++i) {
      EXPECT_EQ(card(pings[i], 5000).y, 86.0 * static_cast<double>(i));
      EXPECT_EQ(card(pings[i], 5000).opacity, 1);
    }
    EXPECT_EQ(cards.last().ping.id, pings.first().id) << "the newest is drawn last";
    EXPECT_TRUE(animation.settled(5000));
  }

  Ping a = pingOf(u"tiktok"_s, u"a"_s, {}), b = pingOf(u"tiktok"_s, u"b"_s, {}),
       c = pingOf(u"tiktok"_s, u"c"_s, {});
  CardStackAnimation animation;
};

TEST(Spring, followsTheDampedOscillation) {
  Spring spring(0);
  spring.retarget(1, 0);
  // x'' = -w^2 (x - 1) - 2 d w x', stepped finely, with w = 2 pi / 0.58 and d = 0.84.
  const double w = 2 * M_PI / 0.58;
  double x = 0, v = 0;
  for (int step = 0; step < 60000; ++step) {
    if (step % 10000 == 0) {
      EXPECT_NEAR(spring.value(step / 100.0), x, 1e-3) << step;
    }
    v += (-w * w * (x - 1) - 2 * 0.84 * w * v) * 1e-5;
    x += v * 1e-5;
  }
}

TEST(Spring, keepsPositionAndVelocityWhenTheTargetChangesOnTheWay) {
  Spring spring(0);
  spring.retarget(100, 0);
  const double value = spring.value(120), velocity = spring.velocity(120);
  EXPECT_NEAR((spring.value(120.01) - value) / 1e-5, velocity, velocity * 0.02);
  spring.retarget(-50, 120);
  EXPECT_NEAR(spring.value(120), value, 1e-9);
  EXPECT_NEAR(spring.velocity(120), velocity, 1e-9);
  EXPECT_FALSE(spring.settled(200, 0.1));
  EXPECT_TRUE(spring.settled(2000, 0.1));
  EXPECT_NEAR(spring.value(2000), -50, 0.1);
}

TEST_F(CardStackAnimationTest, arrivingCardFadesInAtItsPlaceWhileTheOthersMove) {
  animation.reset({b, c});
  EXPECT_TRUE(animation.settled(0));
  expectResting({b, c});
  animation.update({a, b, c}, 1000);
  EXPECT_EQ(animation.cards(1000).size(), 2);
  EXPECT_FALSE(animation.settled(1100));
  EXPECT_EQ(card(a, 1100).y, 0);
  EXPECT_NEAR(card(a, 1100).opacity, 0.5, 0.4);
  EXPECT_NEAR(card(b, 1100).y, 43, 38);
  EXPECT_EQ(card(b, 1100).opacity, 1);
  expectResting({a, b, c});
}

TEST_F(CardStackAnimationTest, leavingCardFadesOutWhereItIsAndMayComeBackFromThere) {
  animation.reset({a, b});
  animation.update({a}, 0);
  const StackedCard leaving = card(b, 90);
  EXPECT_EQ(leaving.y, 86);
  EXPECT_NEAR(leaving.opacity, 0.5, 0.4);
  expectResting({a});

  animation.update({b, a}, 90);
  EXPECT_EQ(animation.cards(90).size(), 2);
  EXPECT_NEAR(card(b, 90).opacity, leaving.opacity, 1e-9);
  EXPECT_NEAR(card(b, 90).y, 86, 1e-9);
  expectResting({b, a});
  animation.update({c, b, a}, 5000);
  EXPECT_EQ(card(b, 5000).opacity, 1) << "it is there to stay";
}

}  // namespace
}  // namespace brisklet
