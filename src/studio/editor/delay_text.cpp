#include "studio/editor/delay_text.h"

#include <QRegularExpression>
#include <array>
#include <charconv>
#include <cmath>

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
  // What the library reads and a person would not write is refused: blanks, grouped digits, "inf".
  static const QRegularExpression number(
      QRegularExpression::anchoredPattern(u"[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?"_s));
  QString decimal = text;
  decimal.replace(u',', u'.');
  if (!number.match(decimal).hasMatch()) return {};
  // Infinite when it is too large, 0 when it is too small.
  const double ms = decimal.toDouble() * 1000;
  if (!std::isfinite(ms)) return {};
  return ms > 0 ? ms : 0;
}

QString roundSeconds(double ms) {
  return formatted(ms / 1000, std::chars_format::fixed, 1) + u's';
}

}  // namespace brisklet
