#include "model/color.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

TEST(Color, readsSixDigitsAndForgivesWhatSurroundsThem) {
  const Color grey{0.5, 0.5, 0.5, 1}, pink{227 / 255.0, 75 / 255.0, 139 / 255.0};
  const struct {
    QString text;
    Color color;
  } rows[]{
      {"#e34b8b", pink},
      {"E34B8B", pink},
      {"\u2003#e34b8b\u2028", pink},
      {"12zz56", {0, 0, 18 / 255.0}},
      {"", grey},
      {QString(1 << 20, 'f'), grey},
      // Characters are counted as a reader does: here six of seven code points, and five of six.
      {"12345z\u0301", {1 / 255.0, 35 / 255.0, 69 / 255.0}},
      {"1234z\u0301", grey},
  };
  for (const auto& [text, expected] : rows) {
    const Color color = Color::fromHex(text);
    EXPECT_TRUE(color == expected) << text.left(20).toStdString() << ": " << color.red << ' ' << color.green
                                   << ' ' << color.blue;
  }
}

}  // namespace
}  // namespace brisklet
