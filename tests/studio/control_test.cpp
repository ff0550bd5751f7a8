#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <set>

#include "studio/chip_grid.h"
#include "studio/clamped_text.h"
#include "studio/control_painting.h"
#include "studio/palette.h"
#include "studio/stage_backdrop.h"
#include "studio/studio_line_edit.h"
#include "studio/tabular_text.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

constexpr TextStyle style{12, FontWeight::Regular};

QImage canvas(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::white);
  return image;
}

TEST(PaletteTest, coloursAreTheNearestOfEightBits) {
  EXPECT_EQ(Studio::ink.name(), u"#111112"_s);
  EXPECT_EQ(Studio::paper.name(), u"#f6f6f7"_s);
  EXPECT_EQ(Studio::line.name(), u"#e7e7e9"_s);
  EXPECT_EQ(Studio::mute.name(), u"#6b6b73"_s);
  EXPECT_EQ(Studio::stage.name(), u"#0e0e12"_s);
}

TEST(ControlPaintingTest, outlinesAreWholePixelsAtEveryScale) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
    QImage image = canvas(200, 200);
    QPainter painter(&image);
    setUpPainter(painter);
    painter.scale(scale, scale);
    paintBox(painter, {QRectF(7, 7, 40, 30), 7, Studio::line, 1}, Studio::ink);
    painter.end();
    const int y = qRound(22 * scale);
    QStringList across;
    for (int x = 0; x < 200; ++x) {
      const QString name = image.pixelColor(x, y).name();
      if (across.isEmpty() || across.last() != name) across.append(name);
    }
    const QStringList expected{u"#ffffff"_s, u"#e7e7e9"_s, u"#111112"_s, u"#e7e7e9"_s, u"#ffffff"_s};
    EXPECT_EQ(across, expected) << scale;
  }
}

TEST(ChipGridTest, columnsAreEqualAndFillTheWidth) {
  using Shape = ChipRows::Shape;
  const auto wallpapers = chipPlaces({.shape = Shape::Square, .spacing = 8, .columns = 5}, 252, 5);
  EXPECT_EQ(wallpapers.first(), QRect(0, 0, 44, 44));
  EXPECT_EQ(wallpapers.last(), QRect(208, 0, 44, 44));

  // 35 1/3 points a column.
  const auto apps = chipPlaces({.shape = Shape::Square, .spacing = 8, .columns = 6}, 252, 6);
  EXPECT_EQ(apps.first().left(), 0);
  EXPECT_EQ(apps.last().right() + 1, 252);
  for (const QRect& app : apps) EXPECT_EQ(app.size(), QSize(36, 36));

  const ChipRows types{.shape = Shape::Strip, .spacing = 6, .minColumnWidth = 88, .height = 28};
  EXPECT_EQ(chipPlaces(types, 252, 3).last(), QRect(0, 34, 123, 28));
  EXPECT_EQ(chipPlaces(types, 276, 3).last(), QRect(188, 0, 88, 28));
  EXPECT_EQ(chipPlaces(types, 50, 2).last(), QRect(0, 34, 50, 28));
}

TEST(StageTest, phoneIsAsLargeAsFitsWithItsMargins) {
  EXPECT_NEAR(phoneScale({744, 807}), 727 / 844.0, 1e-9);
  EXPECT_NEAR(phoneScale({300, 2000}), 220 / 390.0, 1e-9);
  EXPECT_EQ(phoneScale({100, 100}), 0.2);
  EXPECT_EQ(phoneRect({100, 100}).center(), QPointF(50, 50));
  EXPECT_NEAR(phoneRect({744, 807}).height(), 727, 1e-9);
}

TEST(StageTest, backdropFadesWithoutBands) {
  const QImage backdrop = stageBackdrop({744, 807}, 1);
  EXPECT_EQ(backdrop.pixelColor(0, 0).rgb() | 0x010101, Studio::stage.rgb() | 0x010101);
  // Beside the phone the glow falls by a level in about forty pixels: dither mixes neighbouring levels.
  std::set<int> levels;
  double nearMean = 0, farMean = 0;
  for (int i = 0; i < 16; ++i) {
    levels.insert(backdrop.pixelColor(150 + i, 403).red());
    nearMean += backdrop.pixelColor(150 + i, 403).red() / 16.0;
    farMean += backdrop.pixelColor(i, 403).red() / 16.0;
  }
  EXPECT_EQ(levels.size(), 2U);
  EXPECT_GT(nearMean, farMean + 2);
}

TEST(TabularTextTest, numbersOfEqualLengthAreEquallyWide) {
  EXPECT_EQ(TabularText(u"lands at 1.1s"_s, style).width(), TabularText(u"lands at 4.8s"_s, style).width());
  EXPECT_NE(TextLine(u"lands at 1.1s"_s, style).width(), TextLine(u"lands at 4.8s"_s, style).width());
  EXPECT_LE(TabularText(u"1000000000000 pings"_s, style, 40).width(), 40);
}

TEST(ClampedTextTest, textsTakeTheLinesTheyNeedAndNoMore) {
  const struct {
    QString text;
    int lines;
  } cases[] = {{u""_s, 1},
               {u"ok"_s, 1},
               {u"a message that needs two lines"_s, 2},
               {QString(5000, u'w'), 2},
               {u"one\n\n\ntwo"_s, 1},
               {u"هل رأيت ما حدث اليوم في الملعب؟ كان ذلك رائعًا"_s, 2}};
  for (const auto& each : cases)
    EXPECT_EQ(ClampedText(each.text, style, 146, 2).lineCount(), each.lines) << each.text.toStdString();
}

TEST(ClampedTextTest, nothingIsDrawnBeyondTheWidth) {
  for (const QString& text : {QString(300, u'w'), u"هل رأيت ما حدث اليوم في الملعب؟ كان ذلك رائعًا حقًا"_s}) {
    QImage image = canvas(200, 40);
    QPainter painter(&image);
    ClampedText(text, style, 146, 2).draw(painter, {20, 2}, Qt::black);
    painter.end();
    EXPECT_EQ(image.copy(0, 0, 19, 40), canvas(19, 40));
    EXPECT_EQ(image.copy(168, 0, 32, 40), canvas(32, 40));
    EXPECT_NE(image.copy(19, 0, 149, 20), canvas(149, 20));
    EXPECT_NE(image.copy(19, 20, 149, 20), canvas(149, 20));
  }
}

TEST(StudioLineEditTest, otherScriptsDoNotMoveTheBaseline) {
  const auto footOfH = [](const QString& text) {
    StudioLineEdit edit({13, FontWeight::Regular}, 10, 10);
    edit.resize(200, 34);
    edit.showText(text);
    const QImage picture = edit.grab().toImage();
    int foot = -1;
    for (int y = 0; y < picture.height(); ++y)
      if (qGray(picture.pixel(11, y)) < 128) foot = y;
    return foot;
  };
  ASSERT_GT(footOfH(u"H"_s), 0);
  for (const QString& text : {u"H م"_s, u"H 漢"_s, u"H ไ"_s, u"H 🎉"_s})
    EXPECT_EQ(footOfH(text), footOfH(u"H"_s)) << text.toStdString();
}

}  // namespace
}  // namespace brisklet
