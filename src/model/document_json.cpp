#include "model/document_json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

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

/// A quotation of the scene, which may be very long.
QString shortened(const QString& text) {
  constexpr qsizetype longest = 200;
  return text.size() > longest ? text.left(longest) + u"..."_s : text;
}

/// What went wrong, without the library's name for it and its own count of lines.
QString reasonOf(const std::exception& error) {
  const QString text = QString::fromUtf8(error.what());
  const QString reason = text.mid(text.indexOf(u": ") + 2);
  return shortened(reason.startsWith(u"syntax error ") ? reason.mid(13) : reason);
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

/// Builds the values that a document knows while the text is read. What it does not know is dropped before it
/// takes memory. (The library's own builder with a filter looks at all former elements of an array after
/// each.)
class SceneBuilder final : public nlohmann::json_sax<Json> {
 public:
  explicit SceneBuilder(const QByteArray& text) : text_(text) {}

  [[nodiscard]] Json takeRoot() { return std::move(root_); }

  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  bool number_integer(number_integer_t value) override { return put(value); }
  bool number_unsigned(number_unsigned_t value) override { return put(value); }
  bool number_float(number_float_t value, const string_t&) override { return put(value); }
  bool string(string_t& value) override { return put(std::move(value)); }
  bool binary(binary_t&) override { return false; }  // JSON has none
  bool start_object(std::size_t) override { return open(Json::object()); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t) override { return open(Json::array()); }
  bool end_array() override { return close(); }

  bool key(string_t& key) override {
    if (dropped_ > 0) return true;
    dropsNext_ = !isKnownKey(key, static_cast<int>(open_.size()));
    if (!dropsNext_) member_ = &(*open_.back())[key];
    return true;
  }

  bool parse_error(std::size_t byte, const std::string& token, const Json::exception& error) override {
    if (dynamic_cast<const Json::out_of_range*>(&error))
      throw Error(u"it holds a number that is too large: %1"_s.arg(shortened(QString::fromUtf8(token))));
    throw Error(u"it is not valid JSON at %1: %2"_s.arg(positionOf(text_, byte), reasonOf(error)));
  }

 private:
  /// Where the value was put, or null if it was dropped.
  Json* place(Json value) {
    if (dropped_ > 0 || std::exchange(dropsNext_, false)) return nullptr;
    // A ping has nine keys, and a value of the wrong type may hide more: enough for the largest document, far
    // from what would hurt.
    constexpr qsizetype maxValues = maxDocumentPings * 16;
    if (++values_ > maxValues) throw Error(u"it holds more than %1 values"_s.arg(maxValues));
    if (!open_.empty() && open_.back()->is_array())
      return &open_.back()->get_ref<Json::array_t&>().emplace_back(std::move(value));
    Json* const target = open_.empty() ? &root_ : member_;
    *target = std::move(value);
    return target;
  }

  bool put(Json value) {
    place(std::move(value));
    return true;
  }

  bool open(Json container) {
    if (static_cast<int>(open_.size()) + dropped_ >= maxDocumentDepth)
      throw Error(u"it is nested more than %1 levels deep"_s.arg(maxDocumentDepth));
    if (Json* const placed = place(std::move(container)))
      open_.push_back(placed);
    else
      ++dropped_;
    return true;
  }

  bool close() {
    if (dropped_ > 0)
      --dropped_;
    else
      open_.pop_back();
    return true;
  }

  const QByteArray& text_;
  Json root_;
  // From the root inwards. What one of them holds grows only when those in it are closed.
  std::vector<Json*> open_;
  Json* member_ = nullptr;  // the value of the key that was read last
  int dropped_ = 0;         // open arrays and objects that are dropped
  bool dropsNext_ = false;  // the value of the key that was read last is dropped
  qsizetype values_ = 0;
};

Json parse(const QByteArray& json) {
  SceneBuilder builder(json);
  Json::sax_parse(json.begin(), json.end(), &builder);
  return builder.takeRoot();
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
