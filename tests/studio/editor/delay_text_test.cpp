#include "studio/editor/delay_text.h"

#include "studio/editor/slug.h"
#include "support/printing.h"

#include <gtest/gtest.h>

namespace brisklet {
namespace {

TEST(DelayText, secondsAreReadAsWholeDecimalNumbersOnly) {
  for (const QString& each :
       QString("1,5=1500 -3=0 -0=0 +2=2000 .5=500 5.=5000 007=7000 2E-1=200 1e305=1e308 0e999=0").split(' '))
    EXPECT_EQ(readSeconds(each.section('=', 0, 0)), each.section('=', 1).toDouble()) << each.toStdString();
  for (const QString& text : QString("-1e999|1e306|abc|| 2|2\n|.|--1|1,2.3|1e+|e5|0x10|inf|nan|٣").split('|'))
    EXPECT_FALSE(readSeconds(text)) << text.toStdString();
  EXPECT_FALSE(readSeconds(QString("1") + QChar(0) + "2"));
}

TEST(DelayText, timesAreShownInSecondsAndInRows) {
  for (const QString& each : QString("0=0,0ms 999.9=0.9999,999ms 1000=1,1.0s 12345=12.345,12.3s "
                                     "1e9=1e+06,1000000.0s 0.01=1e-05,0ms -12.7=-0.0127,-12ms")
                                 .split(' ')) {
    const double ms = each.section('=', 0, 0).toDouble();
    EXPECT_EQ(secondsText(ms) + ',' + delayLabel(ms), each.section('=', 1).replace(",", ",lands at "));
  }
  EXPECT_EQ(delayLabel(1.7e308).size(), 318);  // every digit of it
}

TEST(Slug, keepsLettersAndDigitsOfAsciiWithSingleDashesBetween) {
  // The Kelvin sign's lower case is a plain k.
  for (const QString& each :
       QString("  --Hello,  World--  =hello-world|日本 2024=2024|a/../b\\c=a-b-c|Café=caf|"
               "\u212Aelvin=kelvin|!!!=")
           .split('|'))
    EXPECT_EQ(slug(each.section('=', 0, 0)), each.section('=', 1));
}

}  // namespace
}  // namespace brisklet
