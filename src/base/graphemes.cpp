#include "base/graphemes.h"

#include <QTextBoundaryFinder>

namespace brisklet {

namespace {

enum class Kind { Letter, Common, Continuing };

Kind kindOf(char32_t character) {
  const QChar::Category category = QChar::category(character);
  if (QChar::isMark(character) || category == QChar::Other_Format) return Kind::Continuing;
  const QChar::Script script = QChar::script(character);
  return script == QChar::Script_Common || script == QChar::Script_Inherited ? Kind::Common : Kind::Letter;
}

}  // namespace

std::vector<qsizetype> graphemeEnds(const QString& text) {
  // Qt (6.4) takes the characters between two words of an Indic script for syllables of that script and
  // tears emoji apart: words and what is between them are looked at one by one.
  std::vector<qsizetype> ends;
  const auto append = [&](qsizetype begin, qsizetype end) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.constData() + begin, end - begin);
    while (finder.toNextBoundary() > 0) ends.push_back(begin + finder.position());
  };
  qsizetype begin = 0;
  Kind current = Kind::Continuing;
  for (qsizetype at = 0; at < text.size();) {
    const bool isPair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
    const char32_t character = isPair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : text[at].unicode();
    const Kind kind = kindOf(character);
    if (kind != Kind::Continuing) {
      if (current != Kind::Continuing && kind != current) {
        append(begin, at);
        begin = at;
      }
      current = kind;
    }
    at += isPair ? 2 : 1;
  }
  append(begin, text.size());
  return ends;
}

QString firstGrapheme(const QString& text) {
  return text.isEmpty() ? QString() : text.left(graphemeEnds(text).front());
}

}  // namespace brisklet
