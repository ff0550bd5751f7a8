#include "model/color.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

TEST(Color, readsSixDigitsAndForgivesWhatSurroundsThem) {
  const Color grey{0.5, 0.5, 0.5, 1};
  const struct {
    QString text;
    Color color;
  } rows[]{
      {"#e34b8b", {227 / 255.0, 75 / 255.0, 139 / 255.0}},
      {"E34B8B", {227 / 255.0, 75 / 255.0, 139 / 255.0}},
      {"  #38c976\n", {56 / 255.0, 201 / 255.0, 118 / 255.0}},
      {QString::fromUtf8("\u2003#38c976\u2028"), {56 / 255.0, 201 / 255.0, 118 / 255.0}},
      {"12zz56", {0, 0, 18 / 255.0}},
      {"0x1234", {0, 18 / 255.0, 52 / 255.0}},
      {"zzzzzz", {0, 0, 0}},
      {"# 12345", {0, 0, 0}},
      {"#fff", grey},
      {"#ff000080", grey},
      {"##38c976", grey},
      {"", grey},
      {"#", grey},
      {QString(1 << 20, 'f'), grey},
  };
  for (const auto& row : rows) {
    const Color color = Color::fromHex(row.text);
    EXPECT_TRUE(color == row.color) << row.text.left(20).toStdString() << ": " << color.red << ' '
                                    << color.green << ' ' << color.blue;
  }
}

TEST(Color, countsCharactersAsAReaderDoes) {
  // Six characters, the last of them a digit with an accent: seven code points.
  EXPECT_FALSE(Color::fromHex(QString::fromUtf8("12345z\u0301")) == (Color{0.5, 0.5, 0.5, 1}));
  // Five characters in six code points.
  EXPECT_TRUE(Color::fromHex(QString::fromUtf8("1234z\u0301")) == (Color{0.5, 0.5, 0.5, 1}));
  // The "#" wears an accent, so it is no "#".
  EXPECT_TRUE(Color::fromHex(QString::fromUtf8("#\u0301123456")) == (Color{0.5, 0.5, 0.5, 1}));
}

}  // namespace
}  // namespace brisklet
