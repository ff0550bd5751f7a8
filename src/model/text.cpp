#include "model/text.h"

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

QString newUuid() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

}  // namespace brisklet
