#include "lockscreen/notification_card.h"

#include "pictures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

constexpr QSizeF card(354, 76);

QImage contentOf(const Ping& ping) {
  static CardContentCache cache;
  static AppGlyphCache glyphs;
  return cache.image(ping, card, {1062, 228}, glyphs);
}

/// The part of `within` on which something is drawn, in points.
QRectF inkOf(const QImage& image, const QRectF& within) {
  const QRect pixels = QRectF(within.topLeft() * 3, within.size() * 3).toRect();
  const QRectF ink = inkBox(image, pixels, [](const QColor& color) { return color.alpha() >= 40; });
  return {ink.topLeft() / 3, ink.size() / 3};
}

TEST(CardLayout, standsAsMeasured) {
  const CardLayout layout = cardLayout(card, 30);
  EXPECT_EQ(layout.glyph, QRectF(14, 19, 38, 38));
  const double titleAscent = lineAscent({15, FontWeight::Semibold});
  EXPECT_NEAR(layout.title.x(), 62, 1e-9);
  EXPECT_NEAR(layout.title.y(), 19 + titleAscent, 1e-9);
  EXPECT_EQ(layout.time, QPointF(354 - 14 - 30, layout.title.y()));
  EXPECT_NEAR(layout.message.y() - layout.title.y(), lineHeight({15, FontWeight::Semibold}) + 1, 1e-9);
  EXPECT_NEAR(layout.title.x() + layout.titleRoom, layout.time.x() - 24, 1e-9);
  EXPECT_NEAR(layout.messageRoom, 354 - 14 - 62, 1e-9);
}

TEST(NotificationCard, longTitleLeavesTheTimeItsSpace) {
  const QImage image = contentOf(pingOf(u"cashapp"_s, QString(200, u'W'), u"hi"_s, 180000));
  const double gap = 340 - TextLine(u"3m ago"_s, CardMetrics::timeStyle).width() - 8.5;
  EXPECT_NE(contentOf(pingOf(u"cashapp"_s, QString(200, u'W'), u"hi"_s)), image) << "It landed just now.";
  EXPECT_NEAR(inkOf(image, {56, 20, 284, 18}).right(), 340, 2);
  EXPECT_TRUE(inkOf(image, {gap, 20, 8, 18}).isEmpty());
  EXPECT_GT(inkOf(image, {62, 20, gap - 62, 18}).right(), gap - 40);
}

TEST(NotificationCard, titleAndTimeHaveTheirColours) {
  // A block fills its cell, so that its middle has the text's full colour.
  const QImage image = contentOf(pingOf(u"cashapp"_s, u"█"_s, u"█"_s));
  const auto brightest = [&](const QRect& within) {
    int most = 0;
    inkBox(image, {within.topLeft() * 3, within.size() * 3}, [&most](const QColor& color) {
      most = std::max(most, color.alpha());
      return false;
    });
    return most / 255.0;
  };
  EXPECT_NEAR(brightest({62, 20, 20, 17}), 1, 0.01);
  EXPECT_NEAR(brightest({62, 42, 20, 14}), 0.94, 0.01);
  EXPECT_NEAR(brightest({300, 20, 54, 17}), 0.7, 0.02);
}

}  // namespace
}  // namespace brisklet
