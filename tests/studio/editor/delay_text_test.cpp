#include "studio/editor/delay_text.h"

#include "studio/editor/slug.h"
#include "support/printing.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

TEST(DelayText, secondsAreReadAsWholeDecimalNumbersOnly) {
  const QList<std::pair<QString, double>> numbers{
      {"1,5", 1500}, {"-3", 0},     {"-0", 0},     {"+2", 2000},     {".5", 500},
      {"5.", 5000},  {"007", 7000}, {"2E-1", 200}, {"1e305", 1e308}, {"0e999", 0}};
  for (const auto& [text, ms] : numbers) EXPECT_EQ(readSeconds(text), ms) << text.toStdString();
  EXPECT_FALSE(std::signbit(*readSeconds("-0")));
  for (const QString text : {"-1e999", "1e306", "abc", "", " 2", "2\n", ".", "--1", "1,2.3", "1e+", "e5",
                             "0x10", "inf", "nan", "٣"})
    EXPECT_FALSE(readSeconds(text)) << text.toStdString();
  EXPECT_FALSE(readSeconds(QString("1") + QChar(0) + "2"));
}

TEST(DelayText, timesAreShownInSecondsAndInRows) {
  const struct {
    double ms;
    QString seconds, label;
  } cases[] = {
      {0, "0", "0ms"},
      {999.9, "0.9999", "999ms"},
      {1000, "1", "1.0s"},
      {12345, "12.345", "12.3s"},
      {1e9, "1e+06", "1000000.0s"},
      {0.01, "1e-05", "0ms"},
      {-12.7, "-0.0127", "-12ms"},
  };
  for (const auto& [ms, seconds, label] : cases) {
    EXPECT_EQ(secondsText(ms), seconds);
    EXPECT_EQ(delayLabel(ms), "lands at " + label);
  }
  EXPECT_EQ(delayLabel(1.7e308).size(), 318);  // every digit of it
}

TEST(Slug, keepsLettersAndDigitsOfAsciiWithSingleDashesBetween) {
  const QList<std::pair<QString, QString>> cases{
      {"  --Hello,  World--  ", "hello-world"},
      {"日本 2024", "2024"},
      {"a/../b\\c", "a-b-c"},
      {"Café", "caf"},
      {"\u212Aelvin", "kelvin"},
      {"!!!", ""},  // the Kelvin sign's lower case is a plain k
  };
  for (const auto& [title, name] : cases) EXPECT_EQ(slug(title), name);
}

}  // namespace
}  // namespace brisklet
