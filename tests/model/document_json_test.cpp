#include "model/document_json.h"

#include <gtest/gtest.h>

#include <QUuid>
#include <cmath>
#include <limits>

#include "base/error.h"
#include "support/printing.h"

namespace brisklet {
namespace {

QString decodingError(const QByteArray& json) {
  try {
    (void)decodeDocument(json);
  } catch (const Error& error) {
    return error.text();
  }
  return "no error";
}

TEST(DocumentJson, missingAndNullKeysTakeDefaults) {
  SequenceDocument blank = SequenceDocument::blank();
  blank.dateLabel = SequenceDocument::iosDateLabel();
  EXPECT_TRUE(decodeDocument("{}") == blank);
  EXPECT_TRUE(decodeDocument(R"({"title": null, "maxVisible": null, "notifications": null, "extra": [1]})") ==
              blank);

  const SequenceDocument document =
      decodeDocument(R"({"notifications": [{}, {"appLabel": "Acme", "sound": null}]})");
  ASSERT_EQ(document.notifications.size(), 2);
  const Ping& ping = document.notifications[0];
  EXPECT_FALSE(QUuid(ping.id).isNull());
  EXPECT_EQ(ping.id.size(), 36);
  EXPECT_NE(ping.id, document.notifications[1].id);
  EXPECT_EQ(ping.appId, "tiktok");
  EXPECT_EQ(ping.icon, QString::fromUtf8("\u2605"));
  EXPECT_EQ(ping.color, "#111111");
  EXPECT_EQ(ping.title, "Notification");
  EXPECT_EQ(ping.message, "New notification");
  EXPECT_EQ(ping.delayMs, 0);
  EXPECT_FALSE(ping.sound);
  EXPECT_EQ(document.notifications[1].title, "Acme");
}

TEST(DocumentJson, whatIsWrittenReadsBackEqual) {
  SequenceDocument document = SequenceDocument::blank();
  document.title =
      QString::fromUtf8("Caf\u00e9 \U0001F469\u200D\U0001F680 \u05E9\u05DC\u05D5\u05DD \"q\"\n") + QChar(0);
  document.wallpaper = "custom";
  document.wallpaperUrl = "/tmp/a b.jpg";
  document.maxVisible = std::numeric_limits<qint64>::min();
  document.playing = true;
  Ping ping;
  ping.id = "a";
  ping.delayMs = 1234.56789;
  document.notifications = {ping, ping};
  document.notifications[1].sound = "";
  document.notifications[1].delayMs = -0.25;
  const QByteArray json = encodeDocument(document);
  EXPECT_TRUE(decodeDocument(json) == document);
  EXPECT_EQ(json.count("\"sound\""), 1);
  EXPECT_TRUE(json.startsWith("{\n  \"title\": \"Caf\u00e9 "));

  qsizetype last = -1;
  for (const char* key : {"title", "wallpaper", "wallpaperUrl", "dateLabel", "timeLabel", "maxVisible",
                          "playing", "loop", "notifications", "id", "appId", "appLabel", "icon", "color"}) {
    const qsizetype at = json.indexOf(QByteArray("\"") + key + "\":");
    EXPECT_GT(at, last) << key;
    last = at;
  }
}

TEST(DocumentJson, aDelayIsTakenOnlyFromANumber) {
  const SequenceDocument document = decodeDocument(
      R"({"notifications": [{"delayMs": 7.5}, {"delayMs": "soon"}, {"delayMs": true}, {"delayMs": {}}, {"delayMs": -3}]})");
  QList<double> delays;
  for (const Ping& ping : document.notifications) delays.append(ping.delayMs);
  EXPECT_EQ(delays, (QList<double>{7.5, 0, 0, 0, -3}));
}

TEST(DocumentJson, anIntegralNumberServesAsInteger) {
  EXPECT_EQ(decodeDocument(R"({"maxVisible": 5.0})").maxVisible, 5);
  EXPECT_EQ(decodeDocument(R"({"maxVisible": -9223372036854775808})").maxVisible,
            std::numeric_limits<qint64>::min());
}

TEST(DocumentJson, errorsNameThePlaceAndTheReason) {
  const struct {
    QByteArray json;
    QString error;
  } rows[]{
      {R"({"title": 5})", "\"title\" must be a string"},
      {R"({"maxVisible": 5.5})", "\"maxVisible\" must be a whole number"},
      {R"({"maxVisible": 9223372036854775808})", "\"maxVisible\" is too large"},
      {R"({"maxVisible": 1e20})", "\"maxVisible\" is too large"},
      {R"({"playing": 1})", "\"playing\" must be true or false"},
      {R"({"notifications": {}})", "\"notifications\" must be an array"},
      {R"({"notifications": [{}, 3]})", "notifications[1] must be an object"},
      {R"({"notifications": [{}, {}, {"color": 3}]})", "notifications[2].color must be a string"},
      {"[]", "the scene must be an object, as in {\"title\": \"Launch day\"}"},
  };
  for (const auto& row : rows) EXPECT_EQ(decodingError(row.json), row.error);

  const QString syntax = decodingError("{\n  \"title\": \"a\",\n  \"loop\": flase\n}");
  EXPECT_TRUE(syntax.contains("line 3, column 1")) << syntax.toStdString();
  EXPECT_TRUE(decodingError("").contains("line 1, column 1"));
  EXPECT_TRUE(decodingError("{} {}").contains("not valid JSON"));
  EXPECT_TRUE(decodingError("{\"title\": \"\xff\"}").contains("not valid JSON"));
  EXPECT_TRUE(decodingError(R"({"notifications": [{"delayMs": 1e999}]})").contains("too large"));
  EXPECT_LT(decodingError("{\"title\": " + QByteArray(1 << 20, 'x') + "}").size(), 400);
}

TEST(DocumentJson, limitsHoldBeforeTheTextCostsMemory) {
  EXPECT_TRUE(decodingError(QByteArray(maxDocumentBytes + 1, ' ')).contains("larger than 64 MiB"));
  EXPECT_TRUE(decodingError(QByteArray(1 << 20, '[')).contains("64 levels"));
  EXPECT_EQ(decodingError("{\"notifications\": " + QByteArray(62, '[') + QByteArray(62, ']') + "}"),
            "notifications[0] must be an object");
  EXPECT_TRUE(
      decodingError("{\"notifications\": [" + QByteArray("0,").repeated(2000000) + "0]}").contains("values"));
  // In a time that grows with the number of pings, and not with its square.
  EXPECT_TRUE(decodingError("{\"notifications\": [" + QByteArray("{},").repeated(1000000) + "{}]}")
                  .contains("pings"));
}

TEST(DocumentJson, keysWithoutMeaningCostNeitherMemoryNorTime) {
  // Were they kept, each would be compared with all before it, for hours.
  const auto keys = [](int count) {
    QByteArray text;
    for (int i = 0; i < count; ++i) text += "\"k" + QByteArray::number(i) + "\":0,";
    return text;
  };
  const SequenceDocument document =
      decodeDocument("{\"notifications\": [{" + keys(1000000) + "\"delayMs\": {" + keys(500000) +
                     "\"title\": 1}, \"title\": \"Mom\"}]}");
  ASSERT_EQ(document.notifications.size(), 1);
  EXPECT_EQ(document.notifications.first().title, "Mom");
  EXPECT_EQ(document.notifications.first().delayMs, 0);
}

TEST(DocumentJson, halfASurrogatePairIsReadAsTheReplacementCharacter) {
  const SequenceDocument document =
      decodeDocument(R"({"title": "a\ud800b\udc00\\ud800\ud83d\ude02\ud83d\u0041"})");
  EXPECT_EQ(document.title, QString::fromUtf8("a\uFFFDb\uFFFD\\ud800\U0001F602\uFFFDA"));
}

TEST(DocumentJson, aDelayThatIsNotFiniteIsRefusedOnWriting) {
  SequenceDocument document = SequenceDocument::blank();
  Ping ping;
  ping.title = "Mom";
  ping.delayMs = std::numeric_limits<double>::infinity();
  document.notifications = {Ping{}, ping};
  try {
    (void)encodeDocument(document);
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.text().startsWith("notifications[1] (\"Mom\")"));
  }
}

}  // namespace
}  // namespace brisklet
