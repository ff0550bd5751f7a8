#include "lockscreen/lock_glass.h"

#include "lockscreen/notification_card.h"
#include "pictures.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>
#include <random>

namespace brisklet {
namespace {

/// Pictures of 390 x 300 points that are hard to write on.
QList<QImage> hardPictures(double scale) {
  const QSize size = (QSizeF(390, 300) * scale).toSize();
  QList<QImage> pictures;
  for (const QRgb color : {0xffffffU, 0x000000U, 0xffff00U, 0x00ffffU, 0xff00ffU, 0x808080U, 0x0000ffU}) {
    pictures.emplace_back(size, QImage::Format_RGB32);
    pictures.last().fill(color);
  }
  QImage halves = pictures[0];
  QPainter(&halves).fillRect(0, 0, size.width() / 2, size.height(), Qt::black);
  pictures.append(halves);
  QImage busy = pictures[0];
  std::mt19937 random(7);
  QPainter painter(&busy);
  for (int i = 0; i < 800; ++i) {
    const auto upTo = [&](int most) { return int(random() % unsigned(most)); };
    painter.fillRect(QRect(upTo(size.width()), upTo(size.height()), 1 + upTo(90), 1 + upTo(90)),
                     QColor::fromHsv(upTo(360), upTo(256), upTo(256)));
  }
  painter.end();
  pictures.append(busy);
  return pictures;
}

/// Relative luminance, as the web's accessibility guidelines (WCAG 2) define it, of white of an opacity on
/// this.
double luminance(const QColor& ground, double opacity) {
  const auto linear = [opacity](double v) {
    v = opacity + (1 - opacity) * v;
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(ground.redF()) + 0.7152 * linear(ground.greenF()) + 0.0722 * linear(ground.blueF());
}

struct Painted {
  QImage wallpaper, backdrop;
  LockGlass glass;

  Painted(const QImage& picture, Rendering rendering, double scale)
      : wallpaper(picture),
        backdrop(glassBackdrop(picture, scale, rendering)),
        glass((QSizeF(354, 76) * scale).toSize(), 28, scale, rendering) {}

  QImage with(std::vector<GlassPlate> plates) {
    QImage image = wallpaper;
    glass.paint(image, backdrop, qRound(18 * (wallpaper.width() / 390.0)), plates);
    return image;
  }
};

/// By how much the picture's pixels differ from one in its middle.
int unevenness(const QImage& image) {
  const QImage even = image.copy(image.width() / 2, image.height() / 2, 1, 1).scaled(image.size());
  return greatestDifference(image, even, image.rect());
}

class LockRenderings : public testing::TestWithParam<Rendering> {};
INSTANTIATE_TEST_SUITE_P(All, LockRenderings, testing::Values(Rendering::Movie, Rendering::Live));

TEST_P(LockRenderings, whiteTextIsReadableOverAnyPicture) {
  constexpr double scale = 2;
  const TimeShade shade = timeShade(pingOf(u"messages"_s, {}, {}), {354, 76}, scale);
  const QList<QImage> pictures = hardPictures(scale);
  for (qsizetype number = 0; number < pictures.size(); ++number) {
    QImage card = Painted(pictures[number], GetParam(), scale).with({{100 * scale}});
    const auto leastContrast = [&card](const QRectF& points, double opacity) {
      double least = 21;
      inkBox(card, QRectF(points.topLeft() * scale, points.size() * scale).toRect(),
             [&](const QColor& color) {
               least = std::min(least, (luminance(color, opacity) + 0.05) / (luminance(color, 0) + 0.05));
               return false;
             });
      return least;
    };
    EXPECT_GE(leastContrast({32, 112, 326, 52}, 0.94), 3.0) << "picture " << number;
    shade.paint(card, (QPointF(18, 100) * scale).toPoint(), 1);
    EXPECT_GE(leastContrast({330, 120, 28, 14}, 0.7), 3.0) << "picture " << number;
  }
  // Glass over a bright sky is bright.
  const QImage white = Painted(pictures[0], GetParam(), scale).with({{100 * scale}});
  EXPECT_NEAR(white.pixelColor(390, 280).lightnessF(), 0.55, 0.01);
}

TEST_P(LockRenderings, plateOverAnEvenPictureIsEvenInsideItsRimAndEdgesBehindAreSoft) {
  Painted painted(hardPictures(3)[5], GetParam(), 3);
  EXPECT_LE(unevenness(painted.backdrop), 1) << "Nothing bleeds in from beyond the picture's border.";
  EXPECT_LE(unevenness(painted.with({{300}}).copy(150, 390, 800, 40)), 3);

  const QImage halves = glassBackdrop(hardPictures(3)[7], 3, GetParam());
  const auto level = [&halves](int x) { return qGreen(halves.pixel(x, 450)); };
  EXPECT_GT(level(1000), level(100) + 40);
  for (int x = 3; x < 1170; x += 3) EXPECT_NEAR(level(x), level(x - 3), 12) << x;
}

TEST_P(LockRenderings, plateKeepsToItsShapeAndItsShadowToItsReach) {
  Painted painted(hardPictures(3).last(), GetParam(), 3);
  const QImage image = painted.with({{300}});
  const int reach = painted.glass.reach(), below = 300 + 228 + reach + 3 * 8;
  for (const QRect& outside : {QRect(0, 0, 1170, 300 - reach), QRect(0, below, 1170, 900 - below)})
    EXPECT_EQ(image.copy(outside), painted.wallpaper.copy(outside));

  // Over white everything that the plate covers is darker than any shadow.
  const QImage plate = Painted(hardPictures(3).first(), GetParam(), 3).with({{300}});
  const auto covered = [&](int x, int y) { return qGreen(plate.pixel(x, y)) < 165; };
  for (const QPoint& inside : {QPoint(585, 312), QPoint(66, 414), QPoint(1104, 414)})
    EXPECT_TRUE(covered(inside.x(), inside.y()));
  for (const QPoint& outside : {QPoint(585, 298), QPoint(52, 414), QPoint(1117, 414), QPoint(68, 314)})
    EXPECT_FALSE(covered(outside.x(), outside.y()));
}

TEST(LockGlass, platesTenPointsApartAreApartAndNearerOnesFlowTogether) {
  Painted painted(hardPictures(2)[1], Rendering::Live, 2);
  const auto gapMiddle = [&](double gap) {
    return qGreen(painted.with({{100}, {100 + 152 + gap * 2}}).pixel(390, int(252 + gap)));
  };
  EXPECT_EQ(gapMiddle(10), 0);
  EXPECT_EQ(gapMiddle(7), 0);
  EXPECT_GT(gapMiddle(3), 25);
  // Light comes from above.
  const QImage grey = Painted(hardPictures(2)[5], Rendering::Live, 2).with({{100}});
  EXPECT_GT(qGreen(grey.pixel(390, 100)), qGreen(grey.pixel(390, 251)) + 10);
  // At rest neighbours leave each other's outlines alone.
  EXPECT_LE(greatestDifference(painted.with({{100}, {272}}), painted.with({{100}}), QRect(40, 104, 700, 140)),
            1);
}

TEST(LockGlass, opacityChangesThePictureWithoutLeaps) {
  Painted painted(hardPictures(1).last(), Rendering::Live, 1);
  QImage before = painted.with({{80.0, 1.0}});
  EXPECT_EQ(painted.with({{80.0, 1.0}, {110.3, 0}}), before);
  for (int step = 1; step <= 20; ++step) {
    const QImage next = painted.with({{80.0, 1.0}, {110.3, step / 20.0}});
    EXPECT_LE(greatestDifference(before, next, next.rect()), 16) << step;
    before = next;
  }
  EXPECT_EQ(painted.with({{-500}, {5000}}), painted.wallpaper) << "Plates beyond the picture are cut off.";
  EXPECT_NE(painted.with({{-40}, {280}}), painted.wallpaper);
}

}  // namespace
}  // namespace brisklet
