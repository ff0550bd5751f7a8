#include "studio/editor/slug.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace brisklet {

QString slug(const QString& title) {
  static const QRegularExpression gaps(u"[^a-z0-9]+"_s), ends(u"^-|-$"_s);
  // Half a surrogate pair, which no expression reads, becomes a character that it does.
  return QString::fromUtf8(title.toLower().toUtf8()).replace(gaps, u"-"_s).remove(ends);
}

}  // namespace brisklet
