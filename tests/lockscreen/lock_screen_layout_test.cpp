#include "lockscreen/lock_screen_layout.h"

#include "drawing/text_line.h"
#include "support/printing.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

LockScreenLayout layoutOf(const QString& time, qsizetype cards, const QString& date = u"Mon Nov 16"_s) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = date;
  document.timeLabel = time;
  return lockScreenLayout(document, cards);
}

TEST(LockScreenLayout, cardsStandTenPointsApartAboveTheQuickActions) {
  const LockScreenLayout layout = layoutOf(u"9:41"_s, 5);
  ASSERT_EQ(layout.cards.size(), 5);
  for (qsizetype i = 0; i < 5; ++i)
    EXPECT_EQ(layout.cards[i], QRectF(18, layout.cardArea.top() + 86.0 * double(i), 354, 76));
  EXPECT_DOUBLE_EQ(layout.cardArea.top(), layout.clockBlock.bottom() + 22);
  EXPECT_DOUBLE_EQ(layout.cardArea.bottom(), 763);
  EXPECT_EQ(layout.torchOrb.rect, QRectF(42, 763, 58, 58));
  EXPECT_EQ(layout.cameraOrb.rect, QRectF(290, 763, 58, 58));
  EXPECT_EQ(layout.homeIndicator, QRectF(128, 831, 134, 5));
}

TEST(LockScreenLayout, statusBarHoldsTimeAndSymbolsOnOneAxis) {
  const LockScreenLayout layout = layoutOf(u"9:41"_s, 0);
  const TextStyle style{16, FontWeight::Semibold};
  const double axis = layout.statusBar.center().y();
  EXPECT_DOUBLE_EQ(layout.statusBar.top(), 14);
  EXPECT_DOUBLE_EQ(layout.statusTime.x(), 28);
  EXPECT_NEAR(layout.statusTime.y() - lineAscent(style) + lineHeight(style) / 2, axis, 1e-9);
  ASSERT_EQ(layout.statusSymbols.size(), 3);
  double right = 390 - 28;
  for (qsizetype i = 2; i >= 0; --i) {
    const QRectF symbol = layout.statusSymbols[i].rect;
    EXPECT_NEAR(symbol.center().y(), axis, 1e-9);
    EXPECT_NEAR(symbol.right(), right, 1e-9);
    right = symbol.left() - 6;
  }
}

TEST(LockScreenLayout, clockStacksDateAndTimeAtTheirLineHeights) {
  const LockScreenLayout layout = layoutOf(u"9:41"_s, 0);
  EXPECT_DOUBLE_EQ(layout.clockBlock.top(), layout.statusBar.bottom() + 10);
  EXPECT_NEAR(layout.date.height(), lineHeight({22, FontWeight::Semibold}), 1e-9);
  EXPECT_DOUBLE_EQ(layout.time.top(), layout.date.bottom());
  EXPECT_NEAR(layout.time.height(), lineHeight({96, FontWeight::Semibold, -3}), 1e-9);
  EXPECT_NEAR(layout.time.center().x(), 195, 1e-9);
  EXPECT_EQ(layoutOf({}, 0, {}).clockBlock, layout.clockBlock);
}

TEST(LockScreenLayout, cardsRunOnBelowTheirAreaAndEndWithTheCanvas) {
  const LockScreenLayout layout = layoutOf({}, 1'000'000);
  EXPECT_GT(layout.cards.last().bottom(), layout.cardArea.bottom());
  EXPECT_LT(layout.cards.last().top(), 844);
  EXPECT_GE(layout.card(layout.cards.size()).top(), 844);
  EXPECT_LE(layout.cards.size(), maxCardsOnCanvas);
}

}  // namespace
}  // namespace brisklet
