#include "model/sequence_document.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QLocale>
#include <cmath>
#include <limits>

#include "support/printing.h"

namespace brisklet {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

SequenceDocument documentWithDelays(const QList<double>& delays) {
  SequenceDocument document = SequenceDocument::blank();
  for (const double delayMs : delays) {
    Ping ping;
    ping.id = QString::number(document.notifications.size());
    ping.delayMs = delayMs;
    document.notifications.append(ping);
  }
  return document;
}

QList<double> visibleDelays(const SequenceDocument& document, double timeMs) {
  QList<double> delays;
  for (const Ping& ping : document.visiblePings(timeMs)) delays.append(ping.delayMs);
  return delays;
}

TEST(SequenceDocument, lastsUntilAfterItsLatestLanding) {
  EXPECT_EQ(documentWithDelays({}).durationMs(), 2400);
  EXPECT_EQ(documentWithDelays({0}).durationMs(), 1800);
  EXPECT_EQ(documentWithDelays({2000, 500}).durationMs(), 3800);
  EXPECT_EQ(documentWithDelays({-5000}).durationMs(), -3200);
}

TEST(SequenceDocument, showsTheNewestOfTheLandedPingsFirst) {
  EXPECT_EQ(visibleDelays(documentWithDelays({}), infinity), QList<double>());
  EXPECT_EQ(visibleDelays(documentWithDelays({0}), -1), QList<double>());
  EXPECT_EQ(visibleDelays(documentWithDelays({0, 700, 1400}), 700), (QList<double>{700, 0}));
  EXPECT_EQ(visibleDelays(documentWithDelays({0, 700, 1400, 2100, 2800, 3500}), infinity),
            (QList<double>{3500, 2800, 2100, 1400, 700}));
  // Newest is latest in the document, whatever the delays.
  EXPECT_EQ(visibleDelays(documentWithDelays({2000, 500}), 2500), (QList<double>{500, 2000}));
}

TEST(SequenceDocument, alwaysHasRoomForOneCard) {
  SequenceDocument document = documentWithDelays({0, 700, 1400});
  for (const qint64 most : {qint64{1}, qint64{0}, std::numeric_limits<qint64>::min()}) {
    document.maxVisible = most;
    EXPECT_EQ(visibleDelays(document, 800), QList<double>{700});
  }
}

TEST(SequenceDocument, comparesEveryFieldAndTextsByCanonicalEquivalence) {
  const SequenceDocument document = documentWithDelays({0});
  SequenceDocument other = document;
  other.loop = true;
  EXPECT_FALSE(document == other);

  SequenceDocument composed = document;
  SequenceDocument decomposed = document;
  composed.notifications[0].title = QString::fromUtf8("caf\u00e9");
  decomposed.notifications[0].title = QString::fromUtf8("cafe\u0301");
  EXPECT_TRUE(composed == decomposed);
  decomposed.notifications[0].title = "cafe";
  EXPECT_FALSE(composed == decomposed);

  SequenceDocument silent = document;
  silent.notifications[0].sound = "";
  EXPECT_FALSE(document == silent);
}

TEST(Ping, saysHowLongAgoItLanded) {
  const struct {
    double delayMs;
    QString label;
  } rows[]{
      {0, "now"},
      {-1e9, "now"},
      {59999, "now"},
      {60000, "1m ago"},
      {89999, "1m ago"},
      {90000, "2m ago"},
      {150000, "3m ago"},
      {infinity, "9223372036854775807m ago"},
      {1e300, "9223372036854775807m ago"},
      {-infinity, "now"},
      {std::nan(""), "now"},
  };
  for (const auto& row : rows) {
    Ping ping;
    ping.delayMs = row.delayMs;
    EXPECT_EQ(ping.lockTimeLabel(), row.label) << row.delayMs;
  }
}

TEST(SequenceDocument, theDateLineIsEnglishInEveryLocale) {
  QLocale::setDefault(QLocale(QLocale::German));
  const QDate today = QDate::currentDate();
  const QStringList words = SequenceDocument::iosDateLabel().split(' ');
  QLocale::setDefault(QLocale::c());
  ASSERT_EQ(words.size(), 3);
  EXPECT_TRUE(QStringList({"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"}).contains(words[0]));
  EXPECT_EQ(words[1], QLocale::c().monthName(today.month(), QLocale::ShortFormat));
  EXPECT_EQ(words[2], QString::number(today.day()));
}

}  // namespace
}  // namespace brisklet
