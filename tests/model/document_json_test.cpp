#include "model/document_json.h"

#include "support/documents.h"
#include "support/errors.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <limits>

namespace brisklet {
namespace {

Ping defaultPing(const QString& id, const QString& title) {
  return {id, "tiktok", "Notification", "\u2605", "#111111", title, "New notification", 0, {}};
}

QString decodingError(const QByteArray& json) {
  return errorOf([&json] { (void)decodeDocument(json); });
}

TEST(DocumentJson, missingAndNullKeysTakeDefaults) {
  for (const char* text :
       {"\xef\xbb\xbf{}", R"({"title": null, "maxVisible": null, "notifications": null, "extra": [1]})"})
    EXPECT_TRUE(decodeDocument(text) == SequenceDocument::blank());
  const QList<Ping> pings =
      decodeDocument(R"({"notifications": [{}, {"appLabel": "Acme", "sound": null}]})").notifications;
  ASSERT_EQ(pings.size(), 2);
  EXPECT_NE(pings[0].id, pings[1].id);
  EXPECT_EQ(pings[0], defaultPing(pings[0].id, "Notification"));
  EXPECT_EQ(pings[1].title, "Acme");
  EXPECT_FALSE(pings[1].sound);
}

TEST(DocumentJson, whatIsWrittenReadsBackEqual) {
  const QString title = "Caf\u00e9 \U0001F469\u200D\U0001F680 \u05E9 \"q\"\n" + QString(QChar(0));
  SequenceDocument document{
      title, "custom", "/tmp/a b.jpg", "Mon", "10:00", std::numeric_limits<qint64>::min(), true, true, {}};
  document.notifications.append({"a", "b", "c", "d", "e", "f", "g", 1234.56789, {}});
  document.notifications.append({"a", {}, {}, {}, {}, {}, {}, -0.25, ""});
  const QByteArray json = encodeDocument(document);
  EXPECT_TRUE(decodeDocument(json) == document);
  EXPECT_EQ(json.count("\"sound\""), 1);
  EXPECT_TRUE(json.startsWith("{\n  \"title\": \"Caf\u00e9 "));

  document.notifications[1].title = "Mom";
  document.notifications[1].delayMs = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(errorOf([&] { (void)encodeDocument(document); }).startsWith("notifications[1] (\"Mom\")"));
}

TEST(DocumentJson, oddValuesAreReadAsFarAsTheyMeanSomething) {
  const SequenceDocument document = decodeDocument(
      R"({"title": "a\ud800b\udc00\\ud800\ud83d\ude02\ud83d\u0041", "maxVisible": 5.0, "notifications":
          [{"delayMs": 7.5}, {"delayMs": "soon"}, {"delayMs": true}, {"delayMs": {}}, {"delayMs": -3}]})");
  EXPECT_EQ(document.title, QString::fromUtf8("a\uFFFDb\uFFFD\\ud800\U0001F602\uFFFDA"));
  EXPECT_EQ(document.maxVisible, 5);
  QList<double> delays;
  for (const Ping& ping : document.notifications) delays.append(ping.delayMs);
  EXPECT_EQ(delays, (QList<double>{7.5, 0, 0, 0, -3}));
}

TEST(DocumentJson, errorsNameThePlaceAndTheReason) {
  const QList<std::pair<QByteArray, QString>> rows{
      {R"({"title": 5})", "\"title\" must be a string"},
      {R"({"maxVisible": 5.5})", "\"maxVisible\" must be a whole number"},
      {R"({"maxVisible": 9223372036854775808})", "\"maxVisible\" is too large"},
      {R"({"playing": 1})", "\"playing\" must be true or false"},
      {R"({"notifications": {}})", "\"notifications\" must be an array"},
      {R"({"notifications": [{}, 3]})", "notifications[1] must be an object"},
      {R"({"notifications": [{}, {}, {"color": 3}]})", "notifications[2].color must be a string"},
      {R"({"notifications": [{"delayMs": 1e999}]})", "too large"},
      {"[]", "the scene must be an object, as in {\"title\": \"Launch day\"}"},
      {"{\n  \"title\": \"a\",\n  \"loop\": flase\n}", "line 3, column 1"},
      {"", "line 1, column 1"},
      {"{\"title\": \"\xff\"}", "not valid JSON"},
      {QByteArray("\xff\xfe{\0}\0", 6), "scenes are UTF-8"},
      {QByteArray("\0\0\0{", 4), "scenes are UTF-8"},
  };
  for (const auto& [json, reason] : rows)
    EXPECT_TRUE(decodingError(json).contains(reason)) << json.toStdString();
  EXPECT_LT(decodingError("{\"title\": " + QByteArray(1 << 20, 'x') + "}").size(), 400);
}

TEST(DocumentJson, limitsHoldBeforeTheTextCostsMemory) {
  const auto listOf = [](const QByteArray& pings) { return "{\"notifications\": [" + pings + "]}"; };
  EXPECT_TRUE(decodingError(QByteArray(maxDocumentBytes + 1, ' ')).contains("larger than 64 MiB"));
  const auto nested = [](int levels) {
    return "{\"x\": " + QByteArray(levels, '[') + QByteArray(levels, ']') + "}";
  };
  EXPECT_EQ(decodingError(nested(63)), "");
  EXPECT_TRUE(decodingError(nested(64)).contains("64 levels"));
  // In a time that grows with the number of pings, and not with its square.
  EXPECT_EQ(decodingError(listOf(QByteArray("{},").repeated(1000000) + "{}")),
            "\"notifications\" holds more than 100000 pings");
  // Were keys without meaning kept, each would be compared with all before it, for hours.
  QByteArray keys;
  for (int i = 0; i < 1000000; ++i) keys += "\"k" + QByteArray::number(i) + "\":0,";
  const QList<Ping> pings = decodeDocument(listOf("{" + keys + "\"delayMs\": {" + keys +
                                                  "\"title\": 1}, \"title\": \"Mom\", \"x\": [1e999, " +
                                                  QByteArray(400, '9') + "]}"))
                                .notifications;
  ASSERT_EQ(pings.size(), 1);
  EXPECT_EQ(pings.first(), defaultPing(pings.first().id, "Mom"));
}

}  // namespace
}  // namespace brisklet
