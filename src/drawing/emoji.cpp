#include "drawing/emoji.h"

#include "base/graphemes.h"

#include <QTextCharFormat>
#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr QChar textStyle(0xfe0e), emojiStyle(0xfe0f);  // variation selectors

struct Range {
  char16_t first, last;
};

/// The characters of the basic plane with Emoji_Presentation in Unicode's emoji-data.txt.
constexpr std::array emojiByDefault{
    Range{0x231a, 0x231b}, Range{0x23e9, 0x23ec}, Range{0x23f0, 0x23f0}, Range{0x23f3, 0x23f3},
    Range{0x25fd, 0x25fe}, Range{0x2614, 0x2615}, Range{0x2648, 0x2653}, Range{0x267f, 0x267f},
    Range{0x2693, 0x2693}, Range{0x26a1, 0x26a1}, Range{0x26aa, 0x26ab}, Range{0x26bd, 0x26be},
    Range{0x26c4, 0x26c5}, Range{0x26ce, 0x26ce}, Range{0x26d4, 0x26d4}, Range{0x26ea, 0x26ea},
    Range{0x26f2, 0x26f3}, Range{0x26f5, 0x26f5}, Range{0x26fa, 0x26fa}, Range{0x26fd, 0x26fd},
    Range{0x2705, 0x2705}, Range{0x270a, 0x270b}, Range{0x2728, 0x2728}, Range{0x274c, 0x274c},
    Range{0x274e, 0x274e}, Range{0x2753, 0x2755}, Range{0x2757, 0x2757}, Range{0x2795, 0x2797},
    Range{0x27b0, 0x27b0}, Range{0x27bf, 0x27bf}, Range{0x2b1b, 0x2b1c}, Range{0x2b50, 0x2b50},
    Range{0x2b55, 0x2b55}};

/// Whether one character, as a reader sees it, is an emoji.
bool isEmoji(QStringView character) {
  // The signs for copyright, registered and trade mark are black letters in the emoji font.
  const char16_t first = character.front().unicode();
  if (character.contains(textStyle) || first == 0xa9 || first == 0xae || first == 0x2122) return false;
  if (character.contains(emojiStyle)) return true;
  if (character.front().isHighSurrogate() && character.size() > 1) {
    const char32_t whole = QChar::surrogateToUcs4(character[0], character[1]);
    return whole >= 0x1f000 && whole <= 0x1faff;
  }
  const auto range = std::partition_point(emojiByDefault.begin(), emojiByDefault.end(),
                                          [first](const Range& r) { return r.last < first; });
  return range != emojiByDefault.end() && first >= range->first;
}

}  // namespace

TextWithEmoji withColorEmoji(const QString& text, const QFont& font) {
  // No emoji is without a character from here on: keycaps have a selector.
  if (std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x2000; })) return {text, {}};

  QFont emojiFont = font;
  const QString family = u"Noto Color Emoji"_s;
  // Named twice: beside letters of some scripts Qt replaces the first family by one for the script.
  emojiFont.setFamilies(QStringList{family, family} + font.families());
  QTextCharFormat format;
  format.setFont(emojiFont);

  TextWithEmoji result;
  qsizetype begin = 0;
  for (const qsizetype end : graphemeEnds(text)) {
    QString character = text.sliced(begin, end - begin);
    begin = end;
    if (isEmoji(character)) {
      character.remove(emojiStyle);
      const int start = static_cast<int>(result.text.size()), length = static_cast<int>(character.size());
      auto& formats = result.formats;
      if (!formats.isEmpty() && formats.back().start + formats.back().length == start)
        formats.back().length += length;
      else
        formats.append({start, length, format});
    }
    result.text += character;
  }
  return result;
}

}  // namespace brisklet
