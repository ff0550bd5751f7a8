#include "model/color.h"

#include "base/graphemes.h"

#include <iterator>

namespace brisklet {

namespace {

constexpr qsizetype digitCount = 6;

int hexDigitValue(QChar unit) {
  const char16_t code = unit.unicode();
  if (code >= u'0' && code <= u'9') return code - u'0';
  if (code >= u'a' && code <= u'f') return code - u'a' + 10;
  if (code >= u'A' && code <= u'F') return code - u'A' + 10;
  return -1;
}

}  // namespace

Color Color::fromHex(const QString& text) {
  QString digits = text.trimmed();
  // A "#" that carries a combining mark is another character, and stays.
  if (firstGrapheme(digits.left(8)) == QLatin1String("#")) digits.remove(0, 1);
  // A character has at least one unit, and nobody writes a colour with thousands of combining marks.
  constexpr qsizetype longestColour = 4096;
  if (digits.size() < digitCount || digits.size() > longestColour ||
      std::ssize(graphemeEnds(digits)) != digitCount)
    return {0.5, 0.5, 0.5, 1};

  if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) digits.remove(0, 2);
  unsigned value = 0;
  for (const QChar unit : digits) {
    const int digit = hexDigitValue(unit);
    if (digit < 0) break;
    value = value * 16 + static_cast<unsigned>(digit);
  }
  return {((value >> 16) & 0xff) / 255.0, ((value >> 8) & 0xff) / 255.0, (value & 0xff) / 255.0, 1};
}

}  // namespace brisklet
