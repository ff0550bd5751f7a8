#include "drawing/symbol_image.h"

#include <gtest/gtest.h>

#include <QImage>

namespace brisklet {

namespace {

QImage drawn(const char* name, double scale, const QPointF& center, const QColor& color = Qt::white) {
  QImage image(int(60 * scale), int(40 * scale), QImage::Format_RGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  painter.scale(scale, scale);
  drawSymbol(painter, QString::fromLatin1(name), 20, center, color);
  return image;
}

double inkWeight(const QImage& image) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) sum += qGray(image.pixel(x, y)) / 255.0;
  return sum;
}

TEST(SymbolImage, everySymbolIsDrawnWithinItsSizeAndInItsColour) {
  for (const char* name : {"cellularbars", "wifi", "battery.100percent", "flashlight.off.fill", "camera.fill",
                           "message.fill", "play.fill", "square.and.arrow.down", "plus", "xmark"}) {
    const QSizeF size = symbolSize(QString::fromLatin1(name), 20);
    EXPECT_DOUBLE_EQ(size.height(), 20) << name;
    (void)drawn(name, 3, {30, 20}, Qt::white);  // The next one has a colour of its own.
    const QImage image = drawn(name, 3, {30, 20}, QColor(0, 255, 0));
    QRectF box(QPointF(), size * 3 + QSizeF(2, 2));
    box.moveCenter({90, 60});
    int full = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QRgb pixel = image.pixel(x, y);
        EXPECT_EQ(qRed(pixel) + qBlue(pixel), 0) << name;
        EXPECT_TRUE(qGreen(pixel) == 0 || box.contains(QPointF(x + 0.5, y + 0.5))) << name;
        full += qGreen(pixel) == 255;
      }
    }
    EXPECT_GT(full, 50) << name;
  }
}

TEST(SymbolImage, isAsSharpAsTheScaleAllowsAndMovesByFractionsOfAPixel) {
  const auto edgePixels = [](const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        count += qGray(image.pixel(x, y)) > 20 && qGray(image.pixel(x, y)) < 235;
    return count;
  };
  // Enlarging a picture made for scale 1 would smear the edge over nine times the pixels.
  EXPECT_LT(edgePixels(drawn("play.fill", 3, {30, 20})), 4.5 * edgePixels(drawn("play.fill", 1, {30, 20})));
  EXPECT_NEAR(inkWeight(drawn("plus", 1, {30.3, 20.4})), inkWeight(drawn("plus", 1, {30, 20})), 2);
  EXPECT_NE(drawn("plus", 1, {30.3, 20}), drawn("plus", 1, {30, 20}));
}

TEST(SymbolImage, aNameWithoutASymbolDrawsNothing) {
  for (const char* name : {"", "nothing", "../images/tiktok", "."}) {
    EXPECT_TRUE(symbolSize(QString::fromLatin1(name), 20).isEmpty());
    EXPECT_EQ(inkWeight(drawn(name, 1, {30, 20})), 0);
  }
}

}  // namespace

}  // namespace brisklet
