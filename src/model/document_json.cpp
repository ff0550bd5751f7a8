#include "model/document_json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "base/error.h"
#include "model/text.h"

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

using Json = nlohmann::ordered_json;

std::string utf8(const QString& text) {
  return text.toStdString();
}

Json number(double value) {
  constexpr double exactIntegers = 9007199254740992;  // 2^53
  if (std::trunc(value) == value && std::abs(value) <= exactIntegers) return static_cast<qint64>(value);
  return value;
}

Json encodePing(const Ping& ping, qsizetype index) {
  if (!std::isfinite(ping.delayMs)) {
    throw Error(
        u"notifications[%1] (\"%2\") lands at a time that is not finite, which a scene file cannot hold"_s
            .arg(index)
            .arg(ping.title));
  }
  Json object{
      {"id", utf8(ping.id)},           {"appId", utf8(ping.appId)},      {"appLabel", utf8(ping.appLabel)},
      {"icon", utf8(ping.icon)},       {"color", utf8(ping.color)},      {"title", utf8(ping.title)},
      {"message", utf8(ping.message)}, {"delayMs", number(ping.delayMs)}};
  if (ping.sound) object["sound"] = utf8(*ping.sound);
  return object;
}

/// The values of one JSON object, with errors that carry its path.
class ObjectReader {
 public:
  /// `path` is empty for the document itself.
  ObjectReader(const Json& object, QString path) : object_(object), path_(std::move(path)) {
    if (!object_.is_object())
      throw Error(path_.isEmpty() ? u"the scene must be an object, as in {\"title\": \"Launch day\"}"_s
                                  : path_ + u" must be an object"_s);
  }

  /// The value at `key`, or null when it is missing or null.
  const Json* find(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }

  std::optional<QString> string(const char* key) const {
    const Json* value = find(key);
    if (!value) return {};
    if (!value->is_string()) fail(key, u"must be a string"_s);
    return QString::fromStdString(value->get_ref<const std::string&>());
  }

  std::optional<bool> boolean(const char* key) const {
    const Json* value = find(key);
    if (!value) return {};
    if (!value->is_boolean()) fail(key, u"must be true or false"_s);
    return value->get<bool>();
  }

  std::optional<qint64> integer(const char* key) const {
    const Json* value = find(key);
    if (!value) return {};
    if (value->is_number_unsigned() &&
        value->get<quint64>() > static_cast<quint64>(std::numeric_limits<qint64>::max()))
      fail(key, u"is too large"_s);
    if (value->is_number_integer()) return value->get<qint64>();
    if (!value->is_number_float()) fail(key, u"must be a whole number"_s);
    const double real = value->get<double>();
    constexpr double beyondInt64 = 9223372036854775808.0;  // 2^63
    if (std::trunc(real) != real) fail(key, u"must be a whole number"_s);
    if (real < -beyondInt64 || real >= beyondInt64) fail(key, u"is too large"_s);
    return static_cast<qint64>(real);
  }

  [[noreturn]] void fail(const char* key, const QString& complaint) const {
    const QString name = QString::fromLatin1(key);
    throw Error((path_.isEmpty() ? u"\"%1\""_s.arg(name) : path_ + u'.' + name) + u' ' + complaint);
  }

 private:
  const Json& object_;
  QString path_;
};

Ping decodePing(const Json& json, qsizetype index) {
  const ObjectReader reader(json, u"notifications[%1]"_s.arg(index));
  Ping ping;
  const std::optional<QString> id = reader.string("id");
  ping.id = id ? *id : newUuid();
  ping.appId = reader.string("appId").value_or(u"tiktok"_s);
  ping.appLabel = reader.string("appLabel").value_or(u"Notification"_s);
  ping.icon = reader.string("icon").value_or(u"\u2605"_s);
  ping.color = reader.string("color").value_or(u"#111111"_s);
  ping.title = reader.string("title").value_or(ping.appLabel);
  ping.message = reader.string("message").value_or(u"New notification"_s);
  if (const Json* delay = reader.find("delayMs"); delay && delay->is_number())
    ping.delayMs = delay->get<double>();
  ping.sound = reader.string("sound");
  return ping;
}

int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

/// The code unit of the escape `\uXXXX` at `at`, or -1 when there is none.
int escapedUnit(const QByteArray& json, qsizetype at) {
  if (at + 6 > json.size() || json[at] != '\\' || json[at + 1] != 'u') return -1;
  int unit = 0;
  for (qsizetype i = at + 2; i < at + 6; ++i) {
    const int value = hexValue(json[i]);
    if (value < 0) return -1;
    unit = unit * 16 + value;
  }
  return unit;
}

/// JSON allows an escape of half a surrogate pair, which stands for no character; the parser does not. Each
/// becomes U+FFFD. The text keeps its length, so that lines and columns in messages stay true.
QByteArray withoutLoneSurrogates(QByteArray json) {
  for (qsizetype at = json.indexOf('\\'); at >= 0; at = json.indexOf('\\', at)) {
    const int unit = escapedUnit(json, at);
    if (unit < 0) {
      at += 2;
      continue;
    }
    const bool isHigh = unit >= 0xd800 && unit < 0xdc00;
    const bool isLow = unit >= 0xdc00 && unit < 0xe000;
    const int next = isHigh ? escapedUnit(json, at + 6) : -1;
    if (isHigh && next >= 0xdc00 && next < 0xe000) {
      at += 12;
      continue;
    }
    if (isHigh || isLow) json.replace(at + 2, 4, "fffd");
    at += 6;
  }
  return json;
}

QString positionOf(const QByteArray& json, std::size_t byte) {
  // The parser counts bytes from 1 and points behind what it could not read.
  const qsizetype at = std::clamp<qsizetype>(static_cast<qsizetype>(byte) - 1, 0, json.size());
  const qsizetype lineStart = at == 0 ? 0 : json.lastIndexOf('\n', at - 1) + 1;
  const qsizetype line = json.first(at).count('\n') + 1;
  const qsizetype column = QString::fromUtf8(json.sliced(lineStart, at - lineStart)).size() + 1;
  return u"line %1, column %2"_s.arg(line).arg(column);
}

/// What went wrong, without the library's name for it and its own count of lines.
QString reasonOf(const std::exception& error) {
  const QString text = QString::fromUtf8(error.what());
  const qsizetype start = text.indexOf(u": ");
  const QString reason = start < 0 ? text : text.mid(start + 2);
  // The reason quotes what was read last, which may be very long.
  constexpr qsizetype longestReason = 200;
  const QString plain = reason.startsWith(u"syntax error ") ? reason.mid(13) : reason;
  return plain.size() > longestReason ? plain.left(longestReason) + u"..."_s : plain;
}

constexpr std::array documentKeys{"title",      "wallpaper", "wallpaperUrl", "dateLabel",    "timeLabel",
                                  "maxVisible", "playing",   "loop",         "notifications"};

constexpr std::array pingKeys{"id",    "appId",   "appLabel", "icon", "color",
                              "title", "message", "delayMs",  "sound"};

bool isKnownKey(const std::string& key, int depth) {
  const auto isIn = [&key](const auto& keys) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
  };
  return depth == 1 ? isIn(documentKeys) : isIn(pingKeys);
}

Json parse(const QByteArray& json) {
  qsizetype values = 0;
  // A ping has nine keys, and a value of the wrong type may hide more: enough for the largest document, far
  // from what would hurt.
  constexpr qsizetype maxValues = maxDocumentPings * 16;
  const auto keep = [&values](int depth, Json::parse_event_t event, Json& parsed) {
    using Event = Json::parse_event_t;
    const bool opens = event == Event::object_start || event == Event::array_start;
    if (opens && depth >= maxDocumentDepth)
      throw Error(u"it is nested more than %1 levels deep"_s.arg(maxDocumentDepth));
    if ((opens || event == Event::value) && ++values > maxValues)
      throw Error(u"it holds more than %1 values"_s.arg(maxValues));
    // What a document does not know is dropped before it takes memory, and time: each key that is kept is
    // compared with all that its object has already.
    return event != Event::key || isKnownKey(parsed.get_ref<const std::string&>(), depth);
  };
  try {
    return Json::parse(json.begin(), json.end(), keep);
  } catch (const nlohmann::json::parse_error& error) {
    throw Error(u"it is not valid JSON at %1: %2"_s.arg(positionOf(json, error.byte), reasonOf(error)));
  } catch (const nlohmann::json::out_of_range& error) {
    throw Error(u"it holds a number that is too large: %1"_s.arg(reasonOf(error)));
  }
}

}  // namespace

QByteArray encodeDocument(const SequenceDocument& document) {
  Json pings = Json::array();
  for (qsizetype i = 0; i < document.notifications.size(); ++i)
    pings.push_back(encodePing(document.notifications[i], i));
  const Json object{{"title", utf8(document.title)},
                    {"wallpaper", utf8(document.wallpaper)},
                    {"wallpaperUrl", utf8(document.wallpaperUrl)},
                    {"dateLabel", utf8(document.dateLabel)},
                    {"timeLabel", utf8(document.timeLabel)},
                    {"maxVisible", document.maxVisible},
                    {"playing", document.playing},
                    {"loop", document.loop},
                    {"notifications", std::move(pings)}};
  // A lone surrogate in a text has no UTF-8 form; it is written as U+FFFD.
  return QByteArray::fromStdString(object.dump(2, ' ', false, Json::error_handler_t::replace)) + '\n';
}

SequenceDocument decodeDocument(const QByteArray& json) {
  if (json.size() > maxDocumentBytes) throw Error(u"it is larger than %1 MiB"_s.arg(maxDocumentBytes >> 20));
  const Json root = parse(withoutLoneSurrogates(json));

  const ObjectReader reader(root, {});
  SequenceDocument document;
  document.title = reader.string("title").value_or(u"Untitled"_s);
  document.wallpaper = reader.string("wallpaper").value_or(u"one"_s);
  document.wallpaperUrl = reader.string("wallpaperUrl").value_or(QString());
  const std::optional<QString> dateLabel = reader.string("dateLabel");
  document.dateLabel = dateLabel ? *dateLabel : SequenceDocument::iosDateLabel();
  document.timeLabel = reader.string("timeLabel").value_or(u"9:41"_s);
  document.maxVisible = reader.integer("maxVisible").value_or(5);
  document.playing = reader.boolean("playing").value_or(false);
  document.loop = reader.boolean("loop").value_or(false);
  if (const Json* pings = reader.find("notifications")) {
    if (!pings->is_array()) reader.fail("notifications", u"must be an array"_s);
    if (pings->size() > static_cast<std::size_t>(maxDocumentPings))
      reader.fail("notifications", u"holds more than %1 pings"_s.arg(maxDocumentPings));
    for (std::size_t i = 0; i < pings->size(); ++i)
      document.notifications.append(decodePing((*pings)[i], static_cast<qsizetype>(i)));
  }
  return document;
}

}  // namespace brisklet
