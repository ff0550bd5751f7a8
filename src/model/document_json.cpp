#include "model/document_json.h"

#include "base/error.h"
#include "model/text.h"

#include <nlohmann/json.hpp>

#include <QLocale>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>

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

/// The code unit of the escape `\uXXXX` at `at`, or -1 when there is none.
int escapedUnit(const QByteArray& json, qsizetype at) {
  if (at + 6 > json.size() || json[at] != '\\' || json[at + 1] != 'u') return -1;
  bool isHex = false;
  const int unit = QByteArrayView(json).sliced(at + 2, 4).toInt(&isHex, 16);
  return isHex ? unit : -1;
}

/// Skips the escape at `at`, or the two of a surrogate pair. Half a pair becomes U+FFFD.
void skipEscape(QByteArray& json, qsizetype& at) {
  const int unit = escapedUnit(json, at);
  const bool isHigh = unit >= 0xd800 && unit < 0xdc00;
  const bool isLow = unit >= 0xdc00 && unit < 0xe000;
  const int next = isHigh ? escapedUnit(json, at + 6) : -1;
  const bool isPair = next >= 0xdc00 && next < 0xe000;
  if ((isHigh || isLow) && !isPair) json.replace(at + 2, 4, "fffd");
  at += unit < 0 ? 2 : isPair ? 12 : 6;
}

/// Stands for a number that no double can hold. Nobody writes zero like this.
constexpr char tooLarge[] = "0e999";

/// Skips the number at `at`. One that no double can hold becomes `tooLarge`.
void skipNumber(QByteArray& json, qsizetype& at) {
  const qsizetype begin = at;
  while (at < json.size() && QByteArrayView("0123456789+-.eE").contains(json[at])) ++at;
  const qsizetype length = at - begin;
  // The shortest is 1e309.
  if (length < 5 || !std::isinf(QLocale::c().toDouble(QString::fromLatin1(json.sliced(begin, length)))))
    return;
  json.replace(begin, length, QByteArray(tooLarge).leftJustified(length, '9'));
}

/// JSON allows two things that the parser does not: half a surrogate pair and any number. The text keeps its
/// length, so that lines and columns in messages stay true.
QByteArray withoutOddities(QByteArray json) {
  bool isInString = false;
  for (qsizetype at = 0; at < json.size();) {
    const char next = json.at(at);
    if (isInString && next == '\\') {
      skipEscape(json, at);
    } else if (!isInString && (next == '-' || (next >= '0' && next <= '9'))) {
      skipNumber(json, at);
    } else {
      if (next == '"') isInString = !isInString;
      ++at;
    }
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

/// Fills a document while its text is read. What the document does not know is passed over, and takes no
/// memory.
class DocumentReader final : public nlohmann::json_sax<Json> {
 public:
  explicit DocumentReader(const QByteArray& text) : text_(text) {}

  [[nodiscard]] SequenceDocument document() const {
    SequenceDocument document = document_;
    document.dateLabel = dateLabel_ ? *dateLabel_ : SequenceDocument::iosDateLabel();
    return document;
  }

  bool null() override { return take(nullptr); }
  bool boolean(bool value) override { return take(value); }
  bool number_integer(number_integer_t value) override { return take(value); }
  bool number_unsigned(number_unsigned_t value) override { return take(value); }
  bool number_float(number_float_t value, const string_t& text) override {
    return take(text.starts_with(tooLarge) ? std::numeric_limits<double>::infinity() : value);
  }
  bool string(string_t& value) override { return take(std::move(value)); }
  bool binary(binary_t&) override { return false; }  // JSON has none
  bool key(string_t& key) override {
    if (passedOver_ == 0) key_ = std::move(key);
    return true;
  }
  bool start_object(std::size_t) override {
    return open(Json::object(), inside_ == Inside::Nothing || inside_ == Inside::Pings);
  }
  bool start_array(std::size_t) override {
    return open(Json::array(), inside_ == Inside::Document && key_ == "notifications");
  }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }

  bool parse_error(std::size_t byte, const std::string&, const Json::exception& error) override {
    throw Error(u"it is not valid JSON at %1: %2"_s.arg(positionOf(text_, byte), reasonOf(error)));
  }

 private:
  /// The innermost of the open arrays and objects that are not passed over; each opens within the former.
  enum class Inside { Nothing, Document, Pings, Ping };

  bool open(const Json& container, bool isExpected) {
    if (static_cast<int>(inside_) + passedOver_ >= maxDocumentDepth)
      throw Error(u"it is nested more than %1 levels deep"_s.arg(maxDocumentDepth));
    if (passedOver_ > 0 || !isExpected) {
      take(container);
      ++passedOver_;
      return true;
    }
    inside_ = static_cast<Inside>(static_cast<int>(inside_) + 1);
    if (inside_ == Inside::Pings) document_.notifications.clear();
    if (inside_ == Inside::Ping) {
      if (document_.notifications.size() == maxDocumentPings)
        throw Error(u"\"notifications\" holds more than %1 pings"_s.arg(maxDocumentPings));
      ping_ = defaultPing();
      id_.reset();
      title_.reset();
    }
    return true;
  }

  bool close() {
    if (passedOver_ > 0) {
      --passedOver_;
      return true;
    }
    if (inside_ == Inside::Ping) {
      ping_.id = id_ ? *id_ : newUuid();
      ping_.title = title_.value_or(ping_.appLabel);
      document_.notifications.append(ping_);
    }
    inside_ = static_cast<Inside>(static_cast<int>(inside_) - 1);
    return true;
  }

  bool take(const Json& value) {
    if (passedOver_ > 0) return true;
    switch (inside_) {
      case Inside::Nothing:
        throw Error(u"the scene must be an object, as in {\"title\": \"Launch day\"}"_s);
      case Inside::Document:
        takeDocumentValue(value);
        break;
      case Inside::Pings:
        throw Error(u"notifications[%1] must be an object"_s.arg(document_.notifications.size()));
      case Inside::Ping:
        takePingValue(value);
    }
    return true;
  }

  void takeDocumentValue(const Json& value) {
    const SequenceDocument& blank = SequenceDocument::blank();
    if (key_ == "title") document_.title = textOf(value).value_or(blank.title);
    if (key_ == "wallpaper") document_.wallpaper = textOf(value).value_or(blank.wallpaper);
    if (key_ == "wallpaperUrl") document_.wallpaperUrl = textOf(value).value_or(blank.wallpaperUrl);
    if (key_ == "dateLabel") dateLabel_ = textOf(value);
    if (key_ == "timeLabel") document_.timeLabel = textOf(value).value_or(blank.timeLabel);
    if (key_ == "maxVisible") document_.maxVisible = integerOf(value).value_or(blank.maxVisible);
    if (key_ == "playing") document_.playing = flagOf(value).value_or(blank.playing);
    if (key_ == "loop") document_.loop = flagOf(value).value_or(blank.loop);
    if (key_ == "notifications") {
      if (!value.is_null()) fail(u"must be an array"_s);
      document_.notifications.clear();
    }
  }

  void takePingValue(const Json& value) {
    if (key_ == "id") id_ = textOf(value);
    if (key_ == "appId") ping_.appId = textOf(value).value_or(defaultPing().appId);
    if (key_ == "appLabel") ping_.appLabel = textOf(value).value_or(defaultPing().appLabel);
    if (key_ == "icon") ping_.icon = textOf(value).value_or(defaultPing().icon);
    if (key_ == "color") ping_.color = textOf(value).value_or(defaultPing().color);
    if (key_ == "title") title_ = textOf(value);
    if (key_ == "message") ping_.message = textOf(value).value_or(defaultPing().message);
    if (key_ == "delayMs") ping_.delayMs = value.is_number() ? value.get<double>() : 0;
    if (key_ == "sound") ping_.sound = textOf(value);
    if (!std::isfinite(ping_.delayMs)) fail(u"is too large"_s);
  }

  static const Ping& defaultPing() {
    static const Ping ping{.id = {},
                           .appId = u"tiktok"_s,
                           .appLabel = u"Notification"_s,
                           .icon = u"\u2605"_s,
                           .color = u"#111111"_s,
                           .title = {},
                           .message = u"New notification"_s,
                           .delayMs = 0,
                           .sound = {}};
    return ping;
  }

  // Each gives nothing for null.

  [[nodiscard]] std::optional<QString> textOf(const Json& value) const {
    if (value.is_null()) return {};
    if (!value.is_string()) fail(u"must be a string"_s);
    return QString::fromStdString(value.get_ref<const std::string&>());
  }

  [[nodiscard]] std::optional<bool> flagOf(const Json& value) const {
    if (value.is_null()) return {};
    if (!value.is_boolean()) fail(u"must be true or false"_s);
    return value.get<bool>();
  }

  [[nodiscard]] std::optional<qint64> integerOf(const Json& value) const {
    if (value.is_null()) return {};
    if (value.is_number_integer() && !value.is_number_unsigned()) return value.get<qint64>();
    const double real = value.is_number() ? value.get<double>() : 0.5;
    constexpr double beyondInt64 = 9223372036854775808.0;  // 2^63
    if (std::trunc(real) != real) fail(u"must be a whole number"_s);
    if (real < -beyondInt64 || real >= beyondInt64) fail(u"is too large"_s);
    return value.get<qint64>();
  }

  [[noreturn]] void fail(const QString& complaint) const {
    const QString key = QString::fromStdString(key_);
    throw Error((inside_ == Inside::Ping
                     ? u"notifications[%1].%2"_s.arg(document_.notifications.size()).arg(key)
                     : u"\"%1\""_s.arg(key)) +
                u' ' + complaint);
  }

  const QByteArray& text_;
  SequenceDocument document_ = SequenceDocument::blank();
  std::optional<QString> dateLabel_;
  Ping ping_;  // the open one
  std::optional<QString> id_;
  std::optional<QString> title_;
  Inside inside_ = Inside::Nothing;
  int passedOver_ = 0;  // open arrays and objects
  std::string key_;
};

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
  if (json.startsWith("\xff\xfe") || json.startsWith("\xfe\xff") ||
      json.first(std::min<qsizetype>(4, json.size())).contains('\0'))
    throw Error(u"it is in UTF-16 or UTF-32; scenes are UTF-8"_s);
  const QByteArray text = withoutOddities(json);
  DocumentReader reader(text);
  Json::sax_parse(text.begin(), text.end(), &reader);
  return reader.document();
}

}  // namespace brisklet
