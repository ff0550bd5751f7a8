#include "drawing/text_line.h"

#include "base/graphemes.h"
#include "support/ink_box.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QRawFont>
#include <QTextLayout>

using namespace Qt::StringLiterals;

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

QRect inkOf(const QImage& image) {
  return inkBox(image, image.rect(), [](const QColor& color) { return color.lightness() >= 64; });
}

/// Where the ink begins and ends, in points from the text's left end.
QPair<double, double> inkSpan(const QImage& image) {
  const QRect ink = inkOf(image);
  return {ink.left() / 3.0 - 20, (ink.right() + 1) / 3.0 - 20};
}

bool isColourful(const QImage& image) {
  const auto isVivid = [](const QColor& color) {
    return color.hsvSaturation() > 100 && qGray(color.rgb()) > 40;
  };
  return !inkBox(image, image.rect(), isVivid).isEmpty();
}

TEST(SystemFont, whatIsTypedIsWhatIsDrawn) {
  const QString text = u"2x4 0x10 -> <- => (A-B) 3*4"_s;
  const QFont font = systemFont(16, FontWeight::Regular);
  QTextLayout layout(text, font);
  layout.beginLayout();
  layout.createLine();
  layout.endLayout();
  EXPECT_EQ(QRawFont::fromFont(font).familyName(), "Brisklet Inter");
  EXPECT_EQ(layout.glyphRuns().first().glyphIndexes(), QRawFont::fromFont(font).glyphIndexesForString(text));
}

TEST(TextLine, aColonBetweenDigitsStandsInTheirMiddle) {
  const auto middle = [](const char* text, double from, double to) {
    const QImage image = drawn(TextLine(QString::fromUtf8(text), {60, FontWeight::Semibold}));
    const QRect ink = inkOf(image.copy(int((20 + from) * 3), 0, int((to - from) * 3), 300));
    return (ink.top() + ink.bottom()) / 6.0;
  };
  const double digit = TextLine("1", {60, FontWeight::Semibold}).width();
  for (const char* time : {"1:1", "1:8", "٩:٤"}) {
    const double width = TextLine(QString::fromUtf8(time), {60, FontWeight::Semibold}).width();
    EXPECT_NEAR(middle(time, width * 0.46, width * 0.54), middle(time, 0, width), 1)
        << time;  // Inter 4 is 0.8 off
  }
  EXPECT_GT(middle("1: 1", digit, digit + 12), middle("1:1", digit, digit + 12) + 3);
}

TEST(TextLine, whatDoesNotFitIsCutWithinTheWidth) {
  for (const QString& text : {u"Your package will be delivered today"_s, u"مرحبا بالعالم هذا نص طويل جدا"_s,
                              u"👨‍👩‍👧‍👦"_s.repeated(6)}) {
    const TextLine line(text, title, 80);
    EXPECT_TRUE(line.isElided()) << text.toStdString();
    EXPECT_LE(line.width(), 80.02) << text.toStdString();
    EXPECT_GT(line.width(), 50) << text.toStdString();
  }
}

TEST(TextLine, theEllipsisStandsWhereTheTextRunsTo) {
  // Where the letters are tall, there is ink above the ellipsis.
  const auto hasTallInk = [](const QString& letter, double from, double to) {
    const TextLine line(letter.repeated(32), title, 100);
    const QRect part(QPoint(int((20 + from * line.width()) * 3), 0),
                     QPoint(int((20 + to * line.width()) * 3), 138));
    return !inkOf(drawn(line).copy(part)).isEmpty();
  };
  EXPECT_FALSE(hasTallInk(u"H"_s, 0.9, 1));
  EXPECT_TRUE(hasTallInk(u"H"_s, 0, 0.1));
  EXPECT_FALSE(hasTallInk(u"ל"_s, 0, 0.1));
  EXPECT_TRUE(hasTallInk(u"ל"_s, 0.9, 1));
}

TEST(TextLine, onlyTheFirstLineIsShownAndMoreIsToldByAnEllipsis) {
  for (const QString& lineBreak : {u"\n"_s, u"\r\n"_s, QString(QChar(0x2028))}) {
    const TextLine line("First" + lineBreak + "Second", title);
    EXPECT_TRUE(line.isElided());
    EXPECT_EQ(drawn(line), drawn(TextLine(u"First…"_s, title)));
    EXPECT_FALSE(TextLine("First" + lineBreak, title).isElided());
  }
}

TEST(TextLine, noBlankStandsBeforeTheEllipsis) {
  const TextLine hello("Hello…", title);
  EXPECT_EQ(drawn(TextLine("Hello wonderful", title, TextLine("Hello …", title).width() + 0.5)),
            drawn(hello));
}

TEST(TextLine, whatCannotBeDrawnIsLeftOutOrReplaced) {
  const QString broken = u"a"_s + QChar(0) + u"b\tc\u0007"_s + QChar(0xd83d);
  EXPECT_EQ(drawn(TextLine(broken, title)), drawn(TextLine(u"ab c\ufffd"_s, title)));
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
  const QString all = u"😂,🔥,❤️,1️⃣,🏳️‍🌈,⬜🇩🇪,हिन्दी ❤️"_s;
  for (const QString& emoji : all.split(',')) {
    const TextLine line(emoji, title);
    EXPECT_TRUE(isColourful(drawn(line))) << qUtf8Printable(emoji);
    EXPECT_TRUE(inkOf(drawn(line, Qt::transparent)).isEmpty()) << qUtf8Printable(emoji);
  }
  EXPECT_FALSE(isColourful(drawn(TextLine(u"1 ♥ ©️"_s, title))));
}

TEST(TextLine, symbolsThatAreTextAreAsWhiteAsText) {
  for (const QString& symbol : {u"\u2709"_s, u"\u2708"_s, u"\u2714"_s, u"\u260e"_s, u"\u263a\ufe0e"_s})
    EXPECT_FALSE(isColourful(drawn(TextLine(symbol, title)))) << qUtf8Printable(symbol);
  EXPECT_TRUE(isColourful(drawn(TextLine(u"\u2709\ufe0f"_s, title))));
}

TEST(TextLine, sequencesOfEmojiAreOneGlyphWide) {
  const double one = TextLine(u"🔥"_s, title).width();
  const QString all = QStringLiteral(
      "👨‍👩‍👧‍👦,👍🏽,🏳️‍🌈,1️⃣,🇩🇪,🏴󠁧󠁢󠁥󠁮󠁧󠁿");
  for (const QString& sequence : all.split(','))
    EXPECT_NEAR(TextLine(sequence, title).width(), one, 0.1) << qUtf8Printable(sequence);
}

TEST(TextBlock, breaksBetweenWordsAndElseAnywhereAndCentresEachLine) {
  const TextStyle clock{96, FontWeight::Semibold, -3};
  const TextBlock words("12:08 twelve", clock, 390);
  EXPECT_EQ(words.lineCount(), 2);
  const TextBlock digits("123456789012", clock, 390);
  EXPECT_GT(digits.lineCount(), 1);
  EXPECT_LE(digits.size().width(), 390.02);
  EXPECT_EQ(TextBlock("9\n41", clock, 390).lineCount(), 2);

  const auto [left, right] = inkSpan(drawn(TextBlock("00", title, 390)));
  EXPECT_NEAR(left, -right, 0.4);
}

TEST(Characters, emojiBetweenIndicWordsStayWhole) {
  const QString text = u"हि 👨‍👩‍👧‍👦 मस्ते"_s;
  EXPECT_EQ(graphemeEnds(text), (std::vector<qsizetype>{2, 3, 14, 15, 16, 20}));
}

}  // namespace

}  // namespace brisklet
