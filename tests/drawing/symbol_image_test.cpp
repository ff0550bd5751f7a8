#include "drawing/symbol_image.h"

#include <gtest/gtest.h>

#include <QImage>

namespace brisklet {

namespace {

TEST(SymbolImage, everySymbolIsDrawnWithinItsSizeAndInItsColour) {
  for (const char* name : {"cellularbars", "wifi", "battery.100percent", "flashlight.off.fill", "camera.fill",
                           "message.fill", "play.fill", "square.and.arrow.down", "plus", "xmark"}) {
    const QSizeF size = symbolSize(QString::fromLatin1(name), 20);
    EXPECT_DOUBLE_EQ(size.height(), 20) << name;
    QImage image(180, 120, QImage::Format_RGB32);
    for (const QColor color : {Qt::white, Qt::green}) {  // The second one has a colour of its own.
      image.fill(Qt::black);
      QPainter painter(&image);
      painter.scale(3, 3);
      drawSymbol(painter, QString::fromLatin1(name), 20, {30, 20}, color);
    }
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

}  // namespace

}  // namespace brisklet
