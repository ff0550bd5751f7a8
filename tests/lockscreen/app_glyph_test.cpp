#include "lockscreen/app_glyph.h"

#include "pictures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

Ping appPing(const QString& appId, const QString& label, const QString& icon, const QString& color) {
  return {{}, appId, label, icon, color, {}, {}, 0, {}};
}

Ping notesPing(const QString& icon) {
  return appPing(u"notes"_s, {}, icon, u"#000000"_s);
}

QImage tileOf(const Ping& ping) {
  return AppGlyph{ping, 38, 10}.image(3);
}

/// The box of what differs clearly from the tile's fill; the fill is read beside the middle of the left edge.
QRect markBox(const QImage& tile) {
  const QColor fill = tile.pixelColor(3, tile.height() / 2);
  return inkBox(tile, tile.rect().adjusted(4, 12, -4, -12), [&fill](const QColor& c) {
    return std::abs(c.red() - fill.red()) + std::abs(c.blue() - fill.blue()) > 120;
  });
}

TEST(AppGlyph, drawnTilesHaveTheirAppsColour) {
  const QList<std::pair<Ping, QRgb>> cases{
      {appPing(u"custom"_s, u"Brew"_s, u"x"_s, u"#ff0000"_s), qRgb(0x11, 0x11, 0x11)},
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
    const QPointF centre = markBox(tileOf(notesPing(icon))).center() + QPointF(0.5, 0.5);
    EXPECT_NEAR(centre.x(), 57, 1.5) << icon.toStdString();
    EXPECT_NEAR(centre.y(), 57, 1.5) << icon.toStdString();
  }
}

TEST(AppGlyph, customMarkIsTheLabelsFirstCharacterInUpperCase) {
  const auto custom = [](const QString& label) { return appPing(u"custom"_s, label, u"+"_s, {}); };
  EXPECT_EQ(tileOf(custom(u"brew"_s)), tileOf(custom(u"Bean"_s)));
  AppGlyphCache cache;
  EXPECT_NE(cache.image({custom(u"brew"_s), 38, 10}, 3), cache.image({custom(u"Cup"_s), 38, 10}, 3));
  EXPECT_TRUE(markBox(tileOf(custom({}))).isEmpty());
}

TEST(AppGlyph, picturesCoverTheTileAndOneStandsOnBlack) {
  for (const QString& app : {u"instagram"_s, u"messages"_s, u"cashapp"_s, u"tiktok"_s}) {
    const QImage tile = tileOf(appPing(app, {}, {}, u"#ff0000"_s));
    EXPECT_EQ(qAlpha(tile.pixel(57, 1)), 255) << app.toStdString();
    EXPECT_EQ(tile.pixel(57, 12) == qRgb(0, 0, 0), app == u"tiktok") << app.toStdString();
    EXPECT_FALSE(markBox(tile).isEmpty());
  }
}

}  // namespace
}  // namespace brisklet
