#include "lockscreen/notification_card.h"

#include <gtest/gtest.h>

#include "pictures.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

constexpr QSizeF card(354, 76);

QImage contentOf(const Ping& ping) {
  CardContentCache cache;
  AppGlyphCache glyphs;
  return cache.image(ping, card, {1062, 228}, glyphs);
}

/// The columns of `within` (points) on which something is drawn, as [first, last]; [-1, -1] if none.
std::pair<double, double> inkColumns(const QImage& image, const QRectF& within) {
  int first = -1, last = -1;
  for (int x = int(within.left() * 3); x < int(within.right() * 3); ++x) {
    for (int y = int(within.top() * 3); y < int(within.bottom() * 3); ++y) {
      if (qAlpha(image.pixel(x, y)) < 40) continue;
      if (first < 0) first = x;
      last = x;
    }
  }
  return {first / 3.0, last / 3.0};
}

TEST(CardLayout, standsAsMeasured) {
  const CardLayout layout = cardLayout(card, 30);
  EXPECT_EQ(layout.glyph, QRectF(14, 19, 38, 38));
  const double titleAscent = lineAscent({15, FontWeight::Semibold});
  EXPECT_NEAR(layout.title.x(), 62, 1e-9);
  EXPECT_NEAR(layout.title.y(), 19 + titleAscent, 1e-9);
  EXPECT_EQ(layout.time, QPointF(354 - 14 - 30, layout.title.y()));
  EXPECT_NEAR(layout.message.y() - layout.title.y(), lineHeight({15, FontWeight::Semibold}) + 1, 1e-9);
  EXPECT_LE(layout.title.x() + layout.titleRoom, layout.time.x() - 8);
  EXPECT_NEAR(layout.messageRoom, 354 - 14 - 62, 1e-9);
}

TEST(NotificationCard, longTitleLeavesTheTimeItsSpace) {
  Ping ping = pingOf(u"cashapp"_s, QString(200, u'W'), u"hi"_s, 180000);
  const QImage image = contentOf(ping);
  const double timeWidth = TextLine(u"3m ago"_s, CardMetrics::timeStyle).width();
  const QRectF line(56, 20, 284, 18);
  EXPECT_NEAR(inkColumns(image, line).second, 340, 2);
  const auto gap = QRectF(340 - timeWidth - 8.5, 20, 8, 18);
  EXPECT_EQ(inkColumns(image, gap).first * 3, -1);
  EXPECT_GT(inkColumns(image, QRectF(62, 20, gap.left() - 62, 18)).second, gap.left() - 40);
}

TEST(NotificationCard, messageOfSeveralLinesShowsItsFirst) {
  const auto message = [](const QString& text) { return contentOf(pingOf(u"cashapp"_s, u"A"_s, text)); };
  EXPECT_EQ(message(u"one\ntwo"_s), message(u"one\nthree\nfour"_s));
  EXPECT_NE(message(u"one\ntwo"_s), message(u"one"_s)) << "an ellipsis says that there is more";
}

TEST(NotificationCard, emptyTextsLeaveTheGlyphAndTheTime) {
  const QImage image = contentOf(pingOf(u"cashapp"_s, {}, {}));
  EXPECT_NEAR(inkColumns(image, {0, 0, 60, 76}).first, 14, 0.5);
  EXPECT_EQ(inkColumns(image, {54, 39, 300, 37}).first * 3, -1);
  EXPECT_NEAR(inkColumns(image, {200, 0, 154, 76}).second, 340, 2);
}

TEST(NotificationCard, titleAndTimeHaveTheirColours) {
  // A block fills its cell, so that its middle has the text's full colour.
  const QImage image = contentOf(pingOf(u"cashapp"_s, u"█"_s, u"█"_s));
  const auto brightest = [&](const QRectF& within) {
    int most = 0;
    for (int x = int(within.left() * 3); x < int(within.right() * 3); ++x)
      for (int y = int(within.top() * 3); y < int(within.bottom() * 3); ++y)
        most = std::max(most, qAlpha(image.pixel(x, y)));
    return most / 255.0;
  };
  EXPECT_NEAR(brightest({62, 20, 20, 17}), 1, 0.01);
  EXPECT_NEAR(brightest({62, 42, 20, 14}), 0.94, 0.01);
  EXPECT_NEAR(brightest({300, 20, 54, 17}), 0.7, 0.02);
}

}  // namespace
}  // namespace brisklet
