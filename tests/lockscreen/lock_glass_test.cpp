#include "lockscreen/lock_glass.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <random>

#include "pictures.h"

namespace brisklet {
namespace {

/// Pictures of 390 x 300 points that are hard to write on.
QList<QImage> hardPictures(double scale) {
  const QSize size = (QSizeF(390, 300) * scale).toSize();
  QList<QImage> pictures;
  for (const QColor& color : {QColor(Qt::white), QColor(Qt::black), QColor(Qt::yellow), QColor(Qt::cyan),
                              QColor(Qt::magenta), QColor(0x80, 0x80, 0x80), QColor(Qt::blue)}) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    pictures.append(image);
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

struct Painted {
  QImage wallpaper, backdrop, target;
  LockGlass glass;

  Painted(const QImage& picture, GlassStyle style, double scale)
      : wallpaper(picture),
        backdrop(glassBackdrop(picture, scale, style)),
        target(picture),
        glass((QSizeF(354, 76) * scale).toSize(), 28, scale, style) {}

  QImage with(std::vector<GlassPlate> plates) {
    QImage image = wallpaper;
    glass.paint(image, backdrop, qRound(18 * (wallpaper.width() / 390.0)), plates);
    return image;
  }
};

class LockGlassStyles : public testing::TestWithParam<GlassStyle> {};
INSTANTIATE_TEST_SUITE_P(All, LockGlassStyles, testing::Values(GlassStyle::Material, GlassStyle::Regular));

TEST_P(LockGlassStyles, whiteTextIsReadableOverAnyPicture) {
  for (const double scale : {1.0, 3.0}) {
    int number = 0;
    for (const QImage& picture : hardPictures(scale)) {
      Painted painted(picture, GetParam(), scale);
      const QImage image = painted.with({{100 * scale}});
      // Where a card's texts can stand.
      const QRect texts = QRectF(32 * scale, 112 * scale, 326 * scale, 52 * scale).toRect();
      double least = 21;
      for (int y = texts.top(); y <= texts.bottom(); ++y) {
        for (int x = texts.left(); x <= texts.right(); ++x) {
          for (const double opacity : {0.7, 1.0})
            least = std::min(least, textContrast(image.pixelColor(x, y), opacity));
        }
      }
      EXPECT_GE(least, 3.0) << "picture " << number << " at " << scale;
      ++number;
    }
  }
}

TEST_P(LockGlassStyles, plateOverAnEvenPictureIsEvenInsideItsRim) {
  const QImage grey = hardPictures(3)[5];
  Painted painted(grey, GetParam(), 3);
  const QImage& backdrop = painted.backdrop;
  // Nothing bleeds in from beyond the picture's border.
  EXPECT_LE(greatestDifference(backdrop, QImage(backdrop.copy(500, 400, 1, 1)).scaled(backdrop.size()),
                               backdrop.rect()),
            1);
  const QImage image = painted.with({{300}});
  const QImage inside = image.copy(150, 390, 800, 40);
  EXPECT_LE(greatestDifference(inside, inside.copy(400, 20, 1, 1).scaled(inside.size()), inside.rect()), 3);
}

TEST_P(LockGlassStyles, plateKeepsToItsShapeAndItsShadowToItsReach) {
  Painted painted(hardPictures(3).last(), GetParam(), 3);
  const QImage image = painted.with({{300}});
  const int reach = painted.glass.reach();
  EXPECT_EQ(image.copy(0, 0, 1170, 300 - reach), painted.wallpaper.copy(0, 0, 1170, 300 - reach));
  const int below = 300 + 228 + reach + 3 * 8;
  EXPECT_EQ(image.copy(0, below, 1170, 900 - below), painted.wallpaper.copy(0, below, 1170, 900 - below));

  // Over white everything that the plate covers is darker than any shadow.
  Painted white(hardPictures(3).first(), GetParam(), 3);
  const QImage plate = white.with({{300}});
  const auto covered = [&](int x, int y) { return qGreen(plate.pixel(x, y)) < 150; };
  EXPECT_FALSE(covered(585, 298));
  EXPECT_TRUE(covered(585, 312));
  EXPECT_FALSE(covered(52, 414));
  EXPECT_TRUE(covered(66, 414));
  EXPECT_TRUE(covered(1104, 414));
  EXPECT_FALSE(covered(1117, 414));
  EXPECT_FALSE(covered(58, 304)) << "corners are round";
}

TEST(LockGlass, plateOfAnyHeightOnTheScreenLooksTheSame) {
  const QImage grey = hardPictures(2)[5];
  Painted painted(grey, GlassStyle::Regular, 2);
  const QImage high = painted.with({{150}}), low = painted.with({{250}}), between = painted.with({{200.5}});
  const QImage a = high.copy(0, 80, 780, 300), b = low.copy(0, 180, 780, 300);
  EXPECT_LE(greatestDifference(a, b, a.rect()), 2);
  // Half a pixel lower, a row is the mean of its neighbours.
  const QImage whole = painted.with({{200}});
  for (const int y : {201, 203, 240, 300, 350})
    EXPECT_NEAR(qGreen(between.pixel(390, y)),
                (qGreen(whole.pixel(390, y)) + qGreen(whole.pixel(390, y - 1))) / 2.0, 40)
        << y;
}

TEST(LockGlass, platesTenPointsApartAreApartAndNearerOnesFlowTogether) {
  const QImage black = hardPictures(2)[1];
  Painted painted(black, GlassStyle::Regular, 2);
  const auto gapMiddle = [&](double gap) {
    const QImage image = painted.with({{100}, {100 + 152 + gap * 2}});
    return qGreen(image.pixel(390, int(252 + gap)));
  };
  EXPECT_EQ(gapMiddle(10), 0);
  EXPECT_EQ(gapMiddle(7), 0);
  EXPECT_GT(gapMiddle(3), 25);
  // At rest neighbours leave each other's outlines alone.
  const QImage both = painted.with({{100}, {272}}), upper = painted.with({{100}});
  EXPECT_LE(greatestDifference(both, upper, QRect(40, 104, 700, 140)), 1);
}

TEST(LockGlass, opacityChangesThePictureWithoutLeaps) {
  Painted painted(hardPictures(1).last(), GlassStyle::Regular, 1);
  const auto at = [&](double opacity) { return painted.with({{80.0, 1.0}, {110.3, opacity}}); };
  EXPECT_EQ(at(0), painted.with({{80.0, 1.0}}));
  QImage before = at(0);
  for (int step = 1; step <= 20; ++step) {
    const QImage next = at(step / 20.0);
    EXPECT_LE(greatestDifference(before, next, next.rect()), 16) << step;
    before = next;
  }
}

TEST(LockGlass, platesBeyondThePictureAreCutOff) {
  Painted painted(hardPictures(1).last(), GlassStyle::Regular, 1);
  EXPECT_EQ(painted.with({{-500}, {5000}}), painted.wallpaper);
  EXPECT_NE(painted.with({{-40}, {280}}), painted.wallpaper);
}

}  // namespace
}  // namespace brisklet
