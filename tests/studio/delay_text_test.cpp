#include "studio/delay_text.h"

#include <gtest/gtest.h>

#include <clocale>

#include "studio/slug.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

TEST(DelayText, secondsAreReadAsWholeDecimalNumbersOnly) {
  const struct {
    QString text;
    std::optional<double> ms;
  } cases[] = {
      {u"1,5"_s, 1500},    {u"1.5"_s, 1500},     {u"-3"_s, 0},     {u"-0"_s, 0},      {u"+2"_s, 2000},
      {u".5"_s, 500},      {u"5."_s, 5000},      {u"007"_s, 7000}, {u"1e3"_s, 1e6},   {u"2E-1"_s, 200},
      {u"1e305"_s, 1e308}, {u"1e-400"_s, 0},     {u"0e999"_s, 0},  {u"-1e999"_s, {}}, {u"1e999"_s, {}},
      {u"1e306"_s, {}},    {u"abc"_s, {}},       {u""_s, {}},      {u" 2"_s, {}},     {u"2 "_s, {}},
      {u"2\n"_s, {}},      {u"."_s, {}},         {u"-"_s, {}},     {u"--1"_s, {}},    {u"1.2.3"_s, {}},
      {u"1,2.3"_s, {}},    {u"1e"_s, {}},        {u"1e+"_s, {}},   {u"e5"_s, {}},     {u"0x10"_s, {}},
      {u"inf"_s, {}},      {u"-infinity"_s, {}}, {u"nan"_s, {}},   {u"1_000"_s, {}},  {u"٣"_s, {}},
      {u"1s"_s, {}},       {u"1\u00002"_s, {}},
  };
  for (const auto& [text, ms] : cases) EXPECT_EQ(readSeconds(text), ms) << text.toStdString();
  EXPECT_FALSE(std::signbit(*readSeconds(u"-0"_s)));
}

TEST(DelayText, timesAreWrittenAlikeInEveryLocale) {
  const struct {
    double ms;
    QString seconds;
    QString label;
  } cases[] = {
      {0, u"0"_s, u"lands at 0ms"_s},
      {700, u"0.7"_s, u"lands at 700ms"_s},
      {999.9, u"0.9999"_s, u"lands at 999ms"_s},
      {1000, u"1"_s, u"lands at 1.0s"_s},
      {1400, u"1.4"_s, u"lands at 1.4s"_s},
      {2100, u"2.1"_s, u"lands at 2.1s"_s},
      {12345, u"12.345"_s, u"lands at 12.3s"_s},
      {12345678.9, u"12345.7"_s, u"lands at 12345.7s"_s},
      {1e9, u"1e+06"_s, u"lands at 1000000.0s"_s},
      {0.01, u"1e-05"_s, u"lands at 0ms"_s},
      {-0.5, u"-0.0005"_s, u"lands at 0ms"_s},
      {-12.7, u"-0.0127"_s, u"lands at -12ms"_s},
  };
  std::setlocale(LC_ALL, "de_DE.UTF-8");
  for (const auto& [ms, seconds, label] : cases) {
    EXPECT_EQ(secondsText(ms), seconds);
    EXPECT_EQ(delayLabel(ms), label);
  }
  std::setlocale(LC_ALL, "C");
  EXPECT_EQ(delayLabel(1.7e308).size(), 318);  // every digit of it
}

TEST(Slug, keepsLettersAndDigitsOfAsciiWithSingleDashesBetween) {
  const QString cases[][2] = {
      {u"Untitled"_s, u"untitled"_s},
      {u"My Cool Video!"_s, u"my-cool-video"_s},
      {u"  --Hello,  World--  "_s, u"hello-world"_s},
      {u"日本 2024"_s, u"2024"_s},
      {u"Launch Day #2"_s, u"launch-day-2"_s},
      {u"a/../b\\c"_s, u"a-b-c"_s},
      {u"Café"_s, u"caf"_s},
      {u"\u212Aelvin"_s, u"kelvin"_s},  // the Kelvin sign's lower case is a plain k
      {u"!!!"_s, u""_s},
      {u""_s, u""_s},
  };
  for (const auto& [title, name] : cases) EXPECT_EQ(slug(title), name);
}

}  // namespace
}  // namespace brisklet
