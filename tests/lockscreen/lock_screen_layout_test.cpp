#include "lockscreen/lock_screen_layout.h"

#include <gtest/gtest.h>

#include "platform/text_line.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

SequenceDocument labelled(const QString& date, const QString& time) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = date;
  document.timeLabel = time;
  return document;
}

TEST(LockScreenLayout, cardsStandTenPointsApartFromTheTopOfTheirArea) {
  const LockScreenLayout layout = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"9:41"_s), 5);
  ASSERT_EQ(layout.cards.size(), 5);
  for (qsizetype i = 0; i < 5; ++i)
    EXPECT_EQ(layout.cards[i], QRectF(18, layout.cardArea.top() + 86.0 * double(i), 354, 76));
  EXPECT_DOUBLE_EQ(layout.cardArea.top(), layout.clockBlock.bottom() + 22);
  EXPECT_DOUBLE_EQ(layout.cardArea.bottom(), 763);
}

TEST(LockScreenLayout, quickActionsAndIndicatorStandAtTheBottom) {
  const LockScreenLayout layout = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"9:41"_s), 0);
  EXPECT_EQ(layout.torchOrb.rect, QRectF(42, 763, 58, 58));
  EXPECT_EQ(layout.cameraOrb.rect, QRectF(290, 763, 58, 58));
  EXPECT_EQ(layout.homeIndicator, QRectF(128, 831, 134, 5));
}

TEST(LockScreenLayout, statusBarHoldsTimeAndSymbolsOnOneAxis) {
  const LockScreenLayout layout = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"9:41"_s), 0);
  const double lineHeightPt = lineHeight({16, FontWeight::Semibold});
  EXPECT_DOUBLE_EQ(layout.statusBar.top(), 14);
  EXPECT_DOUBLE_EQ(layout.statusTime.x(), 28);
  EXPECT_NEAR(layout.statusTime.y() - lineAscent({16, FontWeight::Semibold}) + lineHeightPt / 2,
              layout.statusBar.center().y(), 1e-9);
  ASSERT_EQ(layout.statusSymbols.size(), 3);
  EXPECT_NEAR(layout.statusSymbols[2].rect.right(), 390 - 28, 1e-9);
  for (qsizetype i = 0; i < 3; ++i) {
    EXPECT_NEAR(layout.statusSymbols[i].rect.center().y(), layout.statusBar.center().y(), 1e-9);
    if (i > 0) {
      EXPECT_NEAR(layout.statusSymbols[i].rect.left() - layout.statusSymbols[i - 1].rect.right(), 6, 1e-9);
    }
  }
}

TEST(LockScreenLayout, clockStacksDateAndTimeAtTheirLineHeights) {
  const LockScreenLayout layout = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"9:41"_s), 0);
  EXPECT_DOUBLE_EQ(layout.clockBlock.top(), layout.statusBar.bottom() + 10);
  EXPECT_NEAR(layout.date.height(), lineHeight({22, FontWeight::Semibold}), 1e-9);
  EXPECT_DOUBLE_EQ(layout.time.top(), layout.date.bottom());
  EXPECT_NEAR(layout.time.height(), lineHeight({96, FontWeight::Semibold, -3}), 1e-9);
  EXPECT_NEAR(layout.time.center().x(), 195, 1e-9);
  EXPECT_EQ(lockScreenLayout(labelled({}, {}), 0).clockBlock, layout.clockBlock);
}

TEST(LockScreenLayout, wideTimeWrapsAndTakesItsRoomFromTheCards) {
  const LockScreenLayout narrow = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"9:41"_s), 0);
  const LockScreenLayout wide = lockScreenLayout(labelled(u"Mon Nov 16"_s, u"half past nine"_s), 0);
  EXPECT_GT(wide.time.height(), narrow.time.height() * 1.9);
  EXPECT_LE(wide.time.width(), 390);
  EXPECT_NEAR(narrow.cardArea.height() - wide.cardArea.height(), wide.time.height() - narrow.time.height(),
              1e-9);
  EXPECT_EQ(wide.torchOrb, narrow.torchOrb);
}

TEST(LockScreenLayout, endlessClockLeavesTheCardAreaEmptyNotNegative) {
  const LockScreenLayout layout = lockScreenLayout(labelled({}, QString(1 << 20, u'8')), 3);
  EXPECT_EQ(layout.cardArea.height(), 0);
  EXPECT_TRUE(layout.cards.isEmpty());
  EXPECT_GE(layout.torchOrb.rect.top(), layout.clockBlock.bottom());
}

TEST(LockScreenLayout, cardsRunOnBelowTheirAreaAndEndWithTheCanvas) {
  const LockScreenLayout layout = lockScreenLayout(labelled({}, {}), 1'000'000);
  EXPECT_GT(layout.cards.last().bottom(), layout.cardArea.bottom());
  EXPECT_LT(layout.cards.last().top(), 844);
  EXPECT_GE(layout.card(layout.cards.size()).top(), 844);
  EXPECT_LE(layout.cards.size(), maxCardsOnCanvas);
}

}  // namespace
}  // namespace brisklet
