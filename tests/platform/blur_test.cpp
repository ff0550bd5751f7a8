#include "platform/blur.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <cmath>

namespace brisklet {

namespace {

constexpr double sigmas[] = {0.8, 2, 3, 10, 40, 300};

QImage filled(int width, int height, const QColor& color) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(color);
  return image;
}

TEST(Blur, oneColourStaysAsItIsToTheEdges) {
  for (const double sigma : sigmas) {
    for (const QSize size : {QSize(117, 253), QSize(1, 1), QSize(3, 500), QSize(64, 2)}) {
      const QImage image = filled(size.width(), size.height(), QColor(255, 113, 0));
      EXPECT_EQ(blurred(image, sigma), image) << sigma << " " << size.width();
    }
  }
}

TEST(Blur, aStepBecomesTheErrorFunction) {
  for (const double sigma : {1.5, 2.0, 3.0, 10.0, 40.0}) {
    QImage image = filled(601, 8, Qt::black);
    QPainter(&image).fillRect(300, 0, 301, 8, Qt::white);
    const QImage soft = blurred(image, sigma);
    for (int x = 150; x < 450; ++x) {
      const double expected = 255 * 0.5 * (1 + std::erf((x + 0.5 - 300) / (sigma * std::sqrt(2.0))));
      EXPECT_NEAR(qRed(soft.pixel(x, 4)), expected, 3) << sigma << " at " << x;
    }
  }
}

TEST(Blur, aSlowGradientKeepsItsAverageInEveryPart) {
  QImage image = filled(640, 64, Qt::black);
  for (int x = 0; x < 640; ++x)
    for (int y = 0; y < 64; ++y) image.setPixel(x, y, qRgb(40 + x / 160, 0, 0));
  const QImage soft = blurred(image, 60);
  const auto average = [&](int left) {
    double sum = 0;
    for (int y = 0; y < 64; ++y)
      for (int x = left; x < left + 16; ++x) sum += qRed(soft.pixel(x, y));
    return sum / (16 * 64);
  };
  for (int left = 160; left < 464; left += 16) {
    const double step = average(left + 16) - average(left);
    EXPECT_GT(step, 0.03) << left;
    EXPECT_LT(step, 0.2) << left;
  }
}

TEST(Blur, aMirroredPictureGivesTheMirroredBlur) {
  QImage image = filled(101, 77, Qt::black);
  QPainter(&image).fillRect(10, 20, 35, 9, Qt::white);
  const QImage soft = blurred(image, 9),
               mirrored = blurred(image.mirrored(true, true), 9).mirrored(true, true);
  for (int y = 0; y < 77; ++y)
    for (int x = 0; x < 101; ++x) EXPECT_NEAR(qGray(soft.pixel(x, y)), qGray(mirrored.pixel(x, y)), 1);
}

TEST(Blur, transparentPicturesKeepTheirColourWhereTheyFade) {
  QImage image(120, 120, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter(&image).fillRect(40, 40, 40, 40, Qt::red);
  const QImage soft = blurred(image, 12);
  EXPECT_EQ(soft.format(), image.format());
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 120; ++x) {
      const QRgb pixel = reinterpret_cast<const QRgb*>(soft.constScanLine(y))[x];
      EXPECT_EQ(qRed(pixel), qAlpha(pixel));
      EXPECT_EQ(qGreen(pixel) + qBlue(pixel), 0);
    }
  }
}

}  // namespace

}  // namespace brisklet
