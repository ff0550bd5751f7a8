#include "drawing/fonts.h"

#include <QFontDatabase>
#include <QStringList>
#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

QStringList families() {
  QStringList names{u"Brisklet Inter"_s};
  for (const char* name :
       {"Noto Sans", "Noto Sans Arabic", "Noto Sans Hebrew", "Noto Sans Thai", "Noto Sans Devanagari",
        "Noto Sans Bengali", "Noto Sans Tamil", "Noto Sans CJK SC", "Noto Sans CJK JP", "Noto Sans CJK KR",
        "Noto Sans Symbols", "Noto Sans Symbols2", "Noto Sans Math"})
    names.append(QLatin1String(name));
  // Last, so that symbols that are text, such as an envelope, are as white as the letters. Emoji name it
  // themselves.
  names.append(u"Noto Color Emoji"_s);
  return names;
}

/// Loads the embedded fonts on first use.
const QStringList& systemFamilies() {
  static const QStringList loaded = [] {
    for (const char* file : {"Inter-Regular", "Inter-Medium", "Inter-SemiBold", "Inter-Bold"})
      QFontDatabase::addApplicationFont(u":/fonts/%1.otf"_s.arg(QLatin1String(file)));
    return families();
  }();
  return loaded;
}

QFont makeFont(const TextStyle& style, int pixelSize) {
  QFont font(systemFamilies());
  font.setPixelSize(pixelSize);
  font.setWeight(static_cast<QFont::Weight>(style.weight));
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::PreferAntialias);
  font.setKerning(true);
  if (style.trackingPt != 0)
    font.setLetterSpacing(QFont::AbsoluteSpacing, style.trackingPt * pixelSize / style.sizePt);
  return font;
}

}  // namespace

QFont systemFont(double sizePt, FontWeight weight, double trackingPt) {
  return makeFont({sizePt, weight, trackingPt}, std::max(1, qRound(sizePt)));
}

LayoutFont layoutFont(const TextStyle& style) {
  // Four times the size, so that what Qt rounds, to 1/64 of a unit, does not add up along a line.
  const int pixelSize = std::max(1, qRound(style.sizePt * 4));
  return {makeFont(style, pixelSize), pixelSize / style.sizePt};
}

}  // namespace brisklet
