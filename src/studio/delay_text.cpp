#include "studio/delay_text.h"

#include <QByteArray>
#include <array>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// As printf writes it in the C locale, whatever the process's locale is.
QString formatted(double number, std::chars_format format, int precision) {
  std::array<char, 400> text;  // the greatest double has 309 digits before the point
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number, format, precision);
  Q_ASSERT(error == std::errc());
  return QString::fromLatin1(text.data(), end - text.data());
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

qsizetype digitsFrom(const QByteArray& text, qsizetype from) {
  qsizetype end = from;
  while (end < text.size() && isDigit(text[end])) ++end;
  return end - from;
}

/// Digits with an optional point among or beside them, an optional sign before, an optional exponent after.
bool isDecimalNumber(const QByteArray& text) {
  const auto has = [&text](qsizetype at, const char* characters) {
    return at < text.size() && QByteArrayView(characters).contains(text[at]);
  };
  qsizetype at = has(0, "+-") ? 1 : 0;
  qsizetype digits = digitsFrom(text, at);
  at += digits;
  if (has(at, ".")) {
    const qsizetype fraction = digitsFrom(text, at + 1);
    digits += fraction;
    at += 1 + fraction;
  }
  if (digits == 0) return false;
  if (has(at, "eE")) {
    at += has(at + 1, "+-") ? 2 : 1;
    const qsizetype exponent = digitsFrom(text, at);
    if (exponent == 0) return false;
    at += exponent;
  }
  return at == text.size();
}

}  // namespace

QString delayLabel(double ms) {
  if (ms < 1000) {
    // Adding zero makes a negative zero positive.
    return u"lands at "_s + formatted(std::trunc(ms) + 0.0, std::chars_format::fixed, 0) + u"ms"_s;
  }
  return u"lands at "_s + roundSeconds(ms);
}

QString secondsText(double ms) {
  return formatted(ms / 1000, std::chars_format::general, 6);
}

std::optional<double> readSeconds(const QString& text) {
  // What is not Latin 1 becomes "?", which is in no number.
  const QByteArray decimal = text.toLatin1().replace(',', '.');
  if (!isDecimalNumber(decimal)) return {};
  // Unlike other readers, a stream tells a number too large, which fails, from one too small, which is 0.
  std::istringstream stream(decimal.toStdString());
  stream.imbue(std::locale::classic());
  double seconds = 0;
  if (!(stream >> seconds)) return {};
  const double ms = seconds * 1000;
  if (!std::isfinite(ms)) return {};
  return ms > 0 ? ms : 0;
}

QString roundSeconds(double ms) {
  return formatted(ms / 1000, std::chars_format::fixed, 1) + u's';
}

}  // namespace brisklet
