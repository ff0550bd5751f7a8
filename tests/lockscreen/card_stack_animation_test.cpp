#include "lockscreen/card_stack_animation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "pictures.h"
#include "support/printing.h"

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

struct Stack {
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
  EXPECT_GT(velocity, 100);
  spring.retarget(-50, 120);
  EXPECT_NEAR(spring.value(120), value, 1e-9);
  EXPECT_NEAR(spring.velocity(120), velocity, 1e-9);
  EXPECT_NEAR((spring.value(120.01) - spring.value(120)) / 1e-5, velocity, velocity * 0.02);
  EXPECT_FALSE(spring.settled(200, 0.1));
  EXPECT_TRUE(spring.settled(2000, 0.1));
  EXPECT_NEAR(spring.value(2000), -50, 0.1);
}

TEST(CardStackAnimation, arrivingCardFadesInAtItsPlaceWhileTheOthersMove) {
  Stack s;
  s.animation.reset({s.b, s.c});
  EXPECT_TRUE(s.animation.settled(0));
  s.animation.update({s.a, s.b, s.c}, 1000);
  EXPECT_EQ(s.animation.cards(1000).size(), 2);
  const QList<StackedCard> moving = s.animation.cards(1100);
  EXPECT_FALSE(s.animation.settled(1100));
  EXPECT_EQ(cardOf(moving, s.a).y, 0);
  EXPECT_GT(cardOf(moving, s.a).opacity, 0.1);
  EXPECT_LT(cardOf(moving, s.a).opacity, 0.9);
  EXPECT_GT(cardOf(moving, s.b).y, 5);
  EXPECT_LT(cardOf(moving, s.b).y, 81);
  EXPECT_EQ(cardOf(moving, s.b).opacity, 1);
  const QList<StackedCard> rested = s.animation.cards(3000);
  EXPECT_TRUE(s.animation.settled(3000));
  EXPECT_EQ(cardOf(rested, s.a).opacity, 1);
  EXPECT_EQ(cardOf(rested, s.b).y, 86);
  EXPECT_EQ(rested.last().ping.id, s.a.id) << "the newest is drawn last";
}

TEST(CardStackAnimation, leavingCardFadesOutWhereItIsAndIsGone) {
  Stack s;
  s.animation.reset({s.a, s.b});
  s.animation.update({s.a}, 0);
  const StackedCard leaving = cardOf(s.animation.cards(100), s.b);
  EXPECT_EQ(leaving.y, 86);
  EXPECT_LT(leaving.opacity, 0.9);
  EXPECT_GT(leaving.opacity, 0.1);
  EXPECT_EQ(s.animation.cards(3000).size(), 1);
}

TEST(CardStackAnimation, cardThatComesBackGoesOnFromWhereItHadFadedTo) {
  Stack s;
  s.animation.reset({s.a, s.b});
  s.animation.update({s.a}, 0);
  const double faded = cardOf(s.animation.cards(90), s.b).opacity;
  s.animation.update({s.b, s.a}, 90);
  EXPECT_NEAR(cardOf(s.animation.cards(90), s.b).opacity, faded, 1e-9);
  EXPECT_NEAR(cardOf(s.animation.cards(90), s.b).y, 86, 1e-9);
  EXPECT_EQ(s.animation.cards(90).size(), 2);
  EXPECT_EQ(cardOf(s.animation.cards(3000), s.b).y, 0);
  EXPECT_EQ(cardOf(s.animation.cards(3000), s.b).opacity, 1);
}

TEST(CardStackAnimation, changeOfTextsAloneMovesNothing) {
  Stack s;
  s.animation.reset({s.a, s.b});
  s.b.message = u"edited"_s;
  s.animation.update({s.a, s.b}, 50);
  EXPECT_TRUE(s.animation.settled(50));
  EXPECT_EQ(cardOf(s.animation.cards(50), s.b).ping.message, u"edited"_s);
}

TEST(CardStackAnimation, pingsThatShareAnIdAreCardsOfTheirOwn) {
  Stack s;
  s.b.id = s.a.id;
  s.animation.reset({s.a, s.b});
  s.animation.update({s.c, s.a, s.b}, 0);
  const QList<StackedCard> rested = s.animation.cards(3000);
  ASSERT_EQ(rested.size(), 3);
  EXPECT_EQ(rested[0].y, 172);
  EXPECT_EQ(rested[1].y, 86);
}

}  // namespace
}  // namespace brisklet
