#include "platform/text_line.h"

#include <gtest/gtest.h>

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>

#include "platform/characters.h"

namespace brisklet {

namespace {

constexpr TextStyle title{15, FontWeight::Semibold};

template <typename Text>
QImage drawn(const Text& text, const QColor& color = Qt::white) {
  QImage image(1200, 300, QImage::Format_RGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(3, 3);
  text.draw(painter, {20, 50}, color);
  return image;
}

/// The columns from the first to the last pixel that is not black, in points from the text's left end.
QPair<double, double> inkSpan(const QImage& image) {
  int first = image.width(), last = -1;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qGray(image.pixel(x, y)) < 64) continue;
      first = std::min(first, x);
      last = std::max(last, x);
    }
  }
  return {first / 3.0 - 20, (last + 1) / 3.0 - 20};
}

bool isColourful(const QImage& image) {
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (QColor(image.pixel(x, y)).hsvSaturation() > 100 && qGray(image.pixel(x, y)) > 40) return true;
  return false;
}

TEST(SystemFont, isTheEmbeddedInterAtTheSizeInPainterUnitsWhateverTheScreen) {
  const QFont font = systemFont(16, FontWeight::Bold);
  EXPECT_EQ(QFontInfo(font).family(), "Inter");
  EXPECT_EQ(QFontInfo(font).weight(), 700);
  // Inter's ascender is 0.96875 of its size.
  EXPECT_DOUBLE_EQ(QFontMetricsF(font).ascent(), 15.5);
}

TEST(TextLine, sizesAreExactToFractionsOfAPoint) {
  const QString text = QStringLiteral("The quick brown fox");
  const double at16 = TextLine(text, {16, FontWeight::Bold}).width();
  EXPECT_NEAR(TextLine(text, {15.96, FontWeight::Bold}).width(), at16 * 15.96 / 16, 0.05);
  EXPECT_NEAR(lineAscent({15.96, FontWeight::Bold}), 0.96875 * 15.96, 0.01);
}

TEST(TextLine, trackingIsBetweenCharactersAndNotAfterTheLast) {
  const TextStyle plain{96, FontWeight::Semibold}, tight{96, FontWeight::Semibold, -3};
  EXPECT_NEAR(TextLine("9:41", plain).width() - TextLine("9:41", tight).width(), 3 * 3, 0.1);
}

TEST(TextLine, fitsItsOwnNaturalWidth) {
  for (const char* text :
       {"Payment received", "שלום עולם", "日本語のテキスト", "👨‍👩‍👧‍👦🔥"}) {
    const QString shown = QString::fromUtf8(text);
    EXPECT_FALSE(TextLine(shown, title, TextLine(shown, title).width()).isElided()) << text;
  }
}

TEST(TextLine, whatDoesNotFitIsCutWithinTheWidth) {
  for (const QString& text : {QStringLiteral("Your package will be delivered today"),
                              QStringLiteral("مرحبا بالعالم هذا نص طويل جدا"),
                              QStringLiteral("👨‍👩‍👧‍👦").repeated(6)}) {
    const TextLine line(text, title, 80);
    EXPECT_TRUE(line.isElided()) << text.toStdString();
    EXPECT_LE(line.width(), 80.02) << text.toStdString();
    EXPECT_GT(line.width(), 50) << text.toStdString();
  }
  EXPECT_EQ(TextLine("Anything", title, 3).width(), 0);
}

TEST(TextLine, theEllipsisStandsWhereTheTextRunsTo) {
  // The ellipsis is the only ink that stays below the middle of the letters.
  const auto lowOnly = [](const char* text, double fromLeft, double toRight) {
    const TextLine line(QString::fromUtf8(text), title, 100);
    const QImage image = drawn(line);
    const QRect part = QRectF(QPointF((20 + fromLeft * line.width()) * 3, 0),
                              QPointF((20 + toRight * line.width()) * 3, (50 - 4) * 3))
                           .toRect();
    for (int y = part.top(); y < part.bottom(); ++y)
      for (int x = part.left(); x < part.right(); ++x)
        if (qGray(image.pixel(x, y)) > 64) return false;
    return true;
  };
  EXPECT_TRUE(lowOnly("HHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHH", 0.9, 1));
  EXPECT_FALSE(lowOnly("HHHHHHHHHHHHHHHHHHHHHHHHHHHHHHHH", 0, 0.1));
  EXPECT_TRUE(lowOnly("לללללללללללללללללללללללללללללללל", 0, 0.1));
  EXPECT_FALSE(lowOnly("לללללללללללללללללללללללללללללללל", 0.9, 1));
}

TEST(TextLine, onlyTheFirstLineIsShownAndMoreIsToldByAnEllipsis) {
  for (const QString& lineBreak : {QStringLiteral("\n"), QStringLiteral("\r\n"), QString(QChar(0x2028))}) {
    const TextLine line("First" + lineBreak + "Second", title);
    EXPECT_TRUE(line.isElided());
    EXPECT_EQ(drawn(line), drawn(TextLine(QStringLiteral("First…"), title)));
    EXPECT_FALSE(TextLine("First" + lineBreak, title).isElided());
  }
}

TEST(TextLine, whatCannotBeDrawnIsLeftOutOrReplaced) {
  const QString broken = QStringLiteral("a") + QChar(0) + QStringLiteral("b\tc\u0007") + QChar(0xd83d);
  EXPECT_EQ(drawn(TextLine(broken, title)), drawn(TextLine(QStringLiteral("ab c\ufffd"), title)));
  EXPECT_EQ(TextLine(QString(), title).width(), 0);
}

TEST(TextLine, aMegabyteOfAnythingIsOneShortLine) {
  for (const QChar unit :
       {QChar('x'), QChar(0x0301), QChar(0x0627), QChar(0xd83d), QChar(0x200d), QChar(' ')}) {
    const TextLine line(QString(1 << 20, unit), title, 300);
    EXPECT_LE(line.width(), 300.02);
    EXPECT_TRUE(line.isElided()) << unsigned(unit.unicode());
  }
  EXPECT_LT(TextBlock(QString(1 << 20, '8'), {96, FontWeight::Semibold, -3}, 390).lineCount(), 5000);
}

TEST(TextLine, emojiComeInColourAndFadeAsTheTextDoes) {
  for (const char* emoji :
       {"😂", "🔥", "❤️", "1️⃣", "🏳️‍🌈", "⬜🇩🇪", "हिन्दी ❤️"}) {
    const TextLine line(QString::fromUtf8(emoji), title);
    EXPECT_TRUE(isColourful(drawn(line))) << emoji;
    EXPECT_EQ(inkSpan(drawn(line, Qt::transparent)).second, -20 + 0.0) << emoji;
  }
  EXPECT_FALSE(isColourful(drawn(TextLine(QStringLiteral("1 ♥ ©️"), title))));
}

TEST(TextLine, sequencesOfEmojiAreOneGlyphWide) {
  const double one = TextLine(QStringLiteral("🔥"), title).width();
  for (const char* sequence : {"👨‍👩‍👧‍👦", "👍🏽", "🏳️‍🌈", "❤️‍🔥",
                               "1️⃣", "🇩🇪", "🏴󠁧󠁢󠁥󠁮󠁧󠁿"})
    EXPECT_NEAR(TextLine(QString::fromUtf8(sequence), title).width(), one, 0.1) << sequence;
}

TEST(TextLine, hanCharactersBesideKanaHaveJapaneseForms) {
  // The first character is drawn differently in the two languages.
  const auto first = [](const char* text) {
    return drawn(TextLine(QString::fromUtf8(text), title)).copy(0, 0, (20 + 15) * 3, 300);
  };
  EXPECT_NE(first("直です"), first("直中国"));
  EXPECT_EQ(first("直接的"), first("直中国"));
}

TEST(TextLine, theLineIsAsHighForEveryScript) {
  EXPECT_DOUBLE_EQ(TextLine(QStringLiteral("ที่นี่ 日本語 😂"), title).height(),
                   TextLine("Hello", title).height());
  EXPECT_DOUBLE_EQ(TextLine("", title).ascent(), lineAscent(title));
}

TEST(TextBlock, breaksBetweenWordsAndElseAnywhereAndCentresEachLine) {
  const TextStyle clock{96, FontWeight::Semibold, -3};
  EXPECT_EQ(TextBlock("9:41", clock, 390).lineCount(), 1);
  const TextBlock words("12:08 twelve", clock, 390);
  EXPECT_EQ(words.lineCount(), 2);
  EXPECT_DOUBLE_EQ(words.size().height(), 2 * lineHeight(clock));
  const TextBlock digits("123456789012", clock, 390);
  EXPECT_GT(digits.lineCount(), 1);
  EXPECT_LE(digits.size().width(), 390.02);
  EXPECT_EQ(TextBlock("9\n41", clock, 390).lineCount(), 2);

  const auto [left, right] = inkSpan(drawn(TextBlock("00", title, 390)));
  EXPECT_NEAR(left, -right, 0.4);
}

TEST(Characters, emojiBetweenIndicWordsStayWhole) {
  const QString text = QStringLiteral("हि 👨‍👩‍👧‍👦 मस्ते");
  EXPECT_EQ(characterEnds(text), (std::vector<qsizetype>{2, 3, 14, 15, 16, 20}));
}

}  // namespace

}  // namespace brisklet
