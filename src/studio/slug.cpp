#include "studio/slug.h"

namespace brisklet {

QString slug(const QString& title) {
  QString slug;
  bool afterGap = false;
  for (const QChar character : title.toLower()) {
    const char16_t unit = character.unicode();
    if (!((unit >= u'a' && unit <= u'z') || (unit >= u'0' && unit <= u'9'))) {
      afterGap = true;
      continue;
    }
    if (afterGap && !slug.isEmpty()) slug += u'-';
    afterGap = false;
    slug += character;
  }
  return slug;
}

}  // namespace brisklet
