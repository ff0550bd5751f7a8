#include "model/sequence_document.h"

#include "support/documents.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QLocale>
#include <cmath>
#include <functional>
#include <limits>

namespace brisklet {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(SequenceDocument, lastsUntilAfterItsLatestLanding) {
  EXPECT_EQ(documentOf({}).durationMs(), 2400);
  EXPECT_EQ(documentOf({2000, 500}).durationMs(), 3800);
}

TEST(SequenceDocument, showsTheNewestOfTheLandedPingsFirst) {
  const struct {
    QList<TestPing> landings;
    qint64 maxVisible;
    double timeMs;
    QList<double> visible;
  } rows[]{
      {{0}, 5, -1, {}},
      {{0, 700, 1400}, 5, 700, {700, 0}},
      {{0, 700, 1400, 2100, 2800, 3500}, 5, infinity, {3500, 2800, 2100, 1400, 700}},
      {{2000, 500}, 5, 2500, {500, 2000}},  // newest is latest in the document, whatever the delays
      {{0, 700, 1400}, 0, 800, {700}},
      {{0, 700, 1400}, std::numeric_limits<qint64>::min(), 800, {700}},
  };
  for (const auto& [landings, maxVisible, timeMs, visible] : rows) {
    SequenceDocument document = documentOf(landings);
    document.maxVisible = maxVisible;
    QList<double> seen;
    for (const Ping& ping : document.visiblePings(timeMs)) seen.append(ping.delayMs);
    EXPECT_EQ(seen, visible);
  }
}

TEST(SequenceDocument, comparesEveryFieldAndTextsByCanonicalEquivalence) {
  const auto isEqualAfter = [](const std::function<void(SequenceDocument&, Ping&)>& edit) {
    SequenceDocument document = documentOf({0});
    edit(document, document.notifications.first());
    return document == documentOf({0});
  };
  using Document = SequenceDocument;
  for (const auto text : {&Document::title, &Document::wallpaper, &Document::wallpaperUrl,
                          &Document::dateLabel, &Document::timeLabel})
    EXPECT_FALSE(isEqualAfter([text](Document& document, Ping&) { document.*text += 'x'; }));
  for (const auto text :
       {&Ping::id, &Ping::appId, &Ping::appLabel, &Ping::icon, &Ping::color, &Ping::title, &Ping::message})
    EXPECT_FALSE(isEqualAfter([text](Document&, Ping& ping) { ping.*text += 'x'; }));
  EXPECT_FALSE(isEqualAfter([](Document& document, Ping&) { document.maxVisible = 4; }));
  EXPECT_FALSE(isEqualAfter([](Document& document, Ping&) { document.playing = true; }));
  EXPECT_FALSE(isEqualAfter([](Document& document, Ping&) { document.loop = true; }));
  EXPECT_FALSE(isEqualAfter([](Document&, Ping& ping) { ping.delayMs = 1; }));
  EXPECT_FALSE(isEqualAfter([](Document&, Ping& ping) { ping.sound = ""; }));

  Document composed = documentOf({0}), decomposed = composed;
  composed.notifications[0].title = "caf\u00e9";
  decomposed.notifications[0].title = "cafe\u0301";
  EXPECT_TRUE(composed == decomposed);
}

TEST(Ping, saysHowLongAgoItLanded) {
  const QList<std::pair<double, QString>> rows{
      {-infinity, "now"}, {std::nan(""), "now"}, {59999, "now"},     {60000, "1m ago"},
      {89999, "1m ago"},  {90000, "2m ago"},     {150000, "3m ago"}, {1e300, "9223372036854775807m ago"},
  };
  for (const auto& [delayMs, label] : rows)
    EXPECT_EQ(documentOf({delayMs}).notifications[0].lockTimeLabel(), label) << delayMs;
}

TEST(SequenceDocument, theDateLineIsEnglishInEveryLocale) {
  QLocale::setDefault(QLocale(QLocale::German));
  EXPECT_EQ(SequenceDocument::iosDateLabel(QDate(2026, 3, 8)), "Sun Mar 8");
  EXPECT_EQ(SequenceDocument::iosDateLabel(), SequenceDocument::iosDateLabel(QDate::currentDate()));
  QLocale::setDefault(QLocale::c());
}

}  // namespace
}  // namespace brisklet
