#include "model/sequence_document.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QLocale>
#include <QRegularExpression>
#include <cmath>
#include <limits>

#include "support/printing.h"

namespace brisklet {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

SequenceDocument documentWithDelays(const QList<double>& delays) {
  SequenceDocument document = SequenceDocument::blank();
  for (const double delayMs : delays) {
    document.notifications.emplaceBack();
    document.notifications.last().delayMs = delayMs;
  }
  return document;
}

TEST(SequenceDocument, lastsUntilAfterItsLatestLanding) {
  EXPECT_EQ(documentWithDelays({}).durationMs(), 2400);
  EXPECT_EQ(documentWithDelays({2000, 500}).durationMs(), 3800);
  EXPECT_EQ(documentWithDelays({-5000}).durationMs(), -3200);
}

TEST(SequenceDocument, showsTheNewestOfTheLandedPingsFirst) {
  constexpr auto least = std::numeric_limits<qint64>::min();
  const struct {
    QList<double> delays;
    qint64 maxVisible;
    double timeMs;
    QList<double> visible;
  } rows[]{
      {{0}, 5, -1, {}},
      {{0, 700, 1400}, 5, 700, {700, 0}},
      {{0, 700, 1400, 2100, 2800, 3500}, 5, infinity, {3500, 2800, 2100, 1400, 700}},
      {{2000, 500}, 5, 2500, {500, 2000}},  // newest is latest in the document, whatever the delays
      {{0, 700, 1400}, 1, 800, {700}},
      {{0, 700, 1400}, 0, 800, {700}},
      {{0, 700, 1400}, least, 800, {700}},
  };
  for (const auto& [delays, maxVisible, timeMs, visible] : rows) {
    SequenceDocument document = documentWithDelays(delays);
    document.maxVisible = maxVisible;
    QList<double> seen;
    for (const Ping& ping : document.visiblePings(timeMs)) seen.append(ping.delayMs);
    EXPECT_EQ(seen, visible);
  }
}

TEST(SequenceDocument, comparesEveryFieldAndTextsByCanonicalEquivalence) {
  const auto withTitle = [](const QString& title) {
    SequenceDocument document = documentWithDelays({0});
    document.notifications[0].title = title;
    return document;
  };
  EXPECT_TRUE(withTitle("caf\u00e9") == withTitle("cafe\u0301"));
  EXPECT_FALSE(withTitle("caf\u00e9") == withTitle("cafe"));
  SequenceDocument looping = withTitle({}), silent = looping;
  looping.loop = true;
  silent.notifications[0].sound = "";
  EXPECT_FALSE(looping == withTitle({}));
  EXPECT_FALSE(silent == withTitle({}));
}

TEST(Ping, saysHowLongAgoItLanded) {
  const QList<std::pair<double, QString>> rows{
      {0, "now"},        {-infinity, "now"}, {std::nan(""), "now"},
      {59999, "now"},    {60000, "1m ago"},  {89999, "1m ago"},
      {90000, "2m ago"}, {150000, "3m ago"}, {1e300, "9223372036854775807m ago"},
  };
  for (const auto& [delayMs, label] : rows)
    EXPECT_EQ(documentWithDelays({delayMs}).notifications[0].lockTimeLabel(), label) << delayMs;
}

TEST(SequenceDocument, theDateLineIsEnglishInEveryLocale) {
  QLocale::setDefault(QLocale(QLocale::German));
  const QString label = SequenceDocument::iosDateLabel();
  QLocale::setDefault(QLocale::c());
  const QRegularExpression english("^(Mon|Tue|Wed|Thu|Fri|Sat|Sun) [A-Z][a-z]{2} " +
                                   QString::number(QDate::currentDate().day()) + "$");
  EXPECT_TRUE(english.match(label).hasMatch()) << label.toStdString();
}

}  // namespace
}  // namespace brisklet
