#include "lockscreen/app_glyph.h"

#include <gtest/gtest.h>

#include "lockscreen/bundle_image.h"
#include "pictures.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

Ping appPing(const QString& appId, const QString& label, const QString& icon, const QString& color) {
  Ping ping;
  ping.appId = appId;
  ping.appLabel = label;
  ping.icon = icon;
  ping.color = color;
  return ping;
}

QImage tileOf(const Ping& ping, double corner = 10) {
  return AppGlyph{ping, 38, corner}.image(3);
}

/// The box of what differs clearly from the tile's fill; the fill is read beside the middle of the left edge.
QRect markBox(const QImage& tile) {
  const QColor fill = tile.pixelColor(3, tile.height() / 2);
  QRect box;
  for (int y = 12; y < tile.height() - 12; ++y) {
    for (int x = 4; x < tile.width() - 4; ++x) {
      const QColor c = tile.pixelColor(x, y);
      if (std::abs(c.red() - fill.red()) + std::abs(c.blue() - fill.blue()) > 120) box |= QRect(x, y, 1, 1);
    }
  }
  return box;
}

TEST(AppGlyph, drawnTilesHaveTheirAppsColour) {
  const struct {
    Ping ping;
    QRgb fill;
  } cases[] = {
      {appPing(u"messages"_s, {}, u"x"_s, u"#ff0000"_s), qRgb(52, 199, 89)},
      {appPing(u"custom"_s, u"Brew"_s, u"x"_s, u"#ff0000"_s), qRgb(0x11, 0x11, 0x11)},
      {appPing(u"cashapp"_s, {}, u"x"_s, u"#ff0000"_s), qRgb(0, 214, 50)},
      {appPing(u"notes"_s, {}, u"N"_s, u"#e34b8b"_s), qRgb(0xe3, 0x4b, 0x8b)},
      {appPing(u"../tiktok"_s, {}, u"N"_s, u"no colour"_s), qRgb(128, 128, 128)},
  };
  for (const auto& [ping, fill] : cases) {
    const QImage tile = tileOf(ping);
    EXPECT_EQ(tile.size(), QSize(114, 114));
    EXPECT_EQ(tile.pixel(3, 57), fill) << ping.appId.toStdString();
    EXPECT_EQ(qAlpha(tile.pixel(0, 0)), 0);
    EXPECT_FALSE(markBox(tile).isEmpty()) << ping.appId.toStdString();
  }
}

TEST(AppGlyph, marksAreCentredByWhatIsSeenOfThem) {
  for (const QString& icon : {u"N"_s, u"g"_s, u"-"_s, u"◎"_s, u"\""_s}) {
    const QRect box = markBox(tileOf(appPing(u"notes"_s, {}, icon, u"#000000"_s)));
    EXPECT_NEAR(box.center().x() + 0.5, 57, 1.5) << icon.toStdString();
    EXPECT_NEAR(box.center().y() + 0.5, 57, 1.5) << icon.toStdString();
  }
}

TEST(AppGlyph, customMarkIsTheLabelsFirstCharacterInUpperCaseAndScalesWithTheTile) {
  const auto custom = [](const QString& label) { return appPing(u"custom"_s, label, u"+"_s, {}); };
  EXPECT_EQ(tileOf(custom(u"brew"_s)), tileOf(custom(u"Bean"_s)));
  EXPECT_NE(tileOf(custom(u"brew"_s)), tileOf(custom(u"Cup"_s)));
  EXPECT_TRUE(markBox(tileOf(custom({}))).isEmpty());
  const QRect small = markBox(tileOf(custom(u"b"_s)));
  const QRect large = markBox(AppGlyph{custom(u"b"_s), 76, 20}.image(3));
  EXPECT_NEAR(large.height(), 2 * small.height(), 3);
  const QRect fixed = markBox(AppGlyph{appPing(u"notes"_s, {}, u"B"_s, u"#000000"_s), 76, 20}.image(3));
  EXPECT_NEAR(fixed.height(), markBox(tileOf(appPing(u"notes"_s, {}, u"B"_s, u"#000000"_s))).height(), 2);
}

TEST(AppGlyph, picturesCoverTheTileAndOneStandsOnBlack) {
  ASSERT_TRUE(BundleImage::named(u"instagram"_s));
  const QImage covering = tileOf(appPing(u"instagram"_s, {}, {}, {}));
  EXPECT_EQ(qAlpha(covering.pixel(57, 1)), 255);
  EXPECT_NE(covering.pixel(57, 3), qRgb(0, 0, 0));

  ASSERT_TRUE(BundleImage::named(u"tiktok"_s));
  const QImage standing = tileOf(appPing(u"tiktok"_s, {}, {}, u"#ff0000"_s));
  const int inset = int(0.18 * 114) - 1;
  for (int i = 5; i < 109; ++i) {
    for (int depth = 3; depth < inset; depth += 4) {
      if (i > inset && i < 114 - inset) {
        EXPECT_EQ(standing.pixel(i, depth), qRgb(0, 0, 0));
      }
    }
  }
  EXPECT_FALSE(markBox(standing).isEmpty());
}

TEST(AppGlyph, cornerOfHalfTheSizeMakesACircle) {
  const QImage tile = tileOf(appPing(u"notes"_s, {}, {}, u"#ffffff"_s), 19);
  for (int degrees = 0; degrees < 360; degrees += 15) {
    const double x = std::cos(degrees * M_PI / 180), y = std::sin(degrees * M_PI / 180);
    EXPECT_EQ(qAlpha(tile.pixel(int(57 + 55 * x), int(57 + 55 * y))), 255) << degrees;
    if (degrees % 90 == 45) {
      EXPECT_EQ(qAlpha(tile.pixel(int(57 + 60 * x), int(57 + 60 * y))), 0) << degrees;
    }
  }
}

}  // namespace
}  // namespace brisklet
