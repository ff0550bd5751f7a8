#include "studio/controls/clamped_text.h"
#include "studio/controls/control_painting.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_line_edit.h"
#include "studio/stage_backdrop.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <set>

namespace brisklet {
namespace {

constexpr TextStyle style{12, FontWeight::Regular};

QImage canvas(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::white);
  return image;
}

TEST(ControlPaintingTest, outlinesAreWholePixelsAtEveryScale) {
  for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
    QImage image = canvas(200, 200);
    QPainter painter(&image);
    setUpPainter(painter);
    painter.scale(scale, scale);
    paintBox(painter, {QRectF(7, 7, 40, 30), 7, Studio::line, 1}, Studio::ink);
    QStringList across;
    for (int x = 0; x < 200; ++x) across.append(image.pixelColor(x, qRound(22 * scale)).name());
    across.erase(std::unique(across.begin(), across.end()), across.end());
    EXPECT_EQ(across.join(' '), "#ffffff #e7e7e9 #111112 #e7e7e9 #ffffff") << scale;
  }
}

TEST(StageTest, backdropFadesWithoutBands) {
  const QImage backdrop = stageBackdrop({744, 807}, 1);
  // Beside the phone the glow falls by a level in about forty pixels: dither mixes neighbouring levels.
  std::set<int> levels;
  for (int i = 0; i < 16; ++i) levels.insert(backdrop.pixelColor(150 + i, 403).red());
  EXPECT_EQ(levels.size(), 2U);
  EXPECT_GT(*levels.begin(), backdrop.pixelColor(2, 403).red());
}

TEST(ClampedTextTest, textsTakeTheLinesTheyNeedAndDrawNothingBeyondTheWidth) {
  const auto drawn = [](const ClampedText& text) {
    QImage image = canvas(200, 40);
    QPainter painter(&image);
    text.draw(painter, {20, 2}, Qt::black);
    return image;
  };
  const QList<std::pair<QString, int>> cases{
      {"", 1}, {"a message that needs two lines", 2}, {QString(5000, u'w'), 2}};
  for (const auto& [text, lines] : cases) {
    const ClampedText fitting(text, style, 146, 2);
    EXPECT_EQ(fitting.lineCount(), lines) << text.left(40).toStdString();
    EXPECT_EQ(drawn(fitting).copy(168, 0, 32, 40), canvas(32, 40));
  }
  const auto clamped = [](const QString& text) { return ClampedText(text, style, 146, 2); };
  EXPECT_EQ(drawn(clamped("one\n\n\ntwo")), drawn(clamped("one two")));
  // The short second line of a text that runs to the left is flush on the right.
  const QImage second = drawn(clamped("هل رأيت ما حدث اليوم في الملعب؟ كان")).copy(0, 20, 200, 20);
  EXPECT_EQ(second.copy(0, 0, 70, 20), canvas(70, 20));
  EXPECT_NE(second, canvas(200, 20));
}

TEST(ClampedTextTest, linesAreBrokenByTheWidthInWhichTheyAreDrawn) {
  for (const QString word : {"1️⃣", "❤️", "🎉", "two2", "hello"}) {
    const QString text = (word + u' ').repeated(40);
    const qsizetype length = firstLineLength(text, style, 146);
    const auto isTooLong = [&](qsizetype end) {
      return TextLine(text.left(end).trimmed(), style, 146).isElided();
    };
    EXPECT_EQ(length % (word.size() + 1), 0) << word.toStdString();
    EXPECT_FALSE(isTooLong(length)) << word.toStdString();
    EXPECT_TRUE(isTooLong(length + word.size() + 1)) << word.toStdString();
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
  ASSERT_GT(footOfH("H"), 0);
  for (const QString text : {"H م", "H 漢", "H ไ", "H 🎉"})
    EXPECT_EQ(footOfH(text), footOfH("H")) << text.toStdString();
}

}  // namespace
}  // namespace brisklet
