#include "model/text.h"

#include <QTextBoundaryFinder>
#include <QUuid>
#include <algorithm>

namespace brisklet {

namespace {

bool isAscii(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() < 0x80; });
}

}  // namespace

bool sameText(const QString& a, const QString& b) {
  if (a == b) return true;
  if (isAscii(a) && isAscii(b)) return false;
  return a.normalized(QString::NormalizationForm_C) == b.normalized(QString::NormalizationForm_C);
}

int characterCount(const QString& text) {
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  int count = 0;
  while (finder.toNextBoundary() != -1) ++count;
  return count;
}

QString firstCharacter(const QString& text) {
  if (text.isEmpty()) return {};
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  return text.left(finder.toNextBoundary());
}

QString newUuid() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

}  // namespace brisklet
