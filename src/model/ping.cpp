#include "model/ping.h"

#include "model/text.h"

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace brisklet {

QString Ping::lockTimeLabel() const {
  constexpr double msPerMinute = 60000;
  if (std::isnan(delayMs) || delayMs < msPerMinute) return u"now"_s;
  constexpr double beyondInt64 = 9223372036854775808.0;  // 2^63
  const double rounded = std::round(delayMs / msPerMinute);
  const qint64 minutes =
      rounded < beyondInt64 ? static_cast<qint64>(rounded) : std::numeric_limits<qint64>::max();
  return QString::number(minutes) + u"m ago"_s;
}

bool operator==(const Ping& a, const Ping& b) {
  return sameText(a.id, b.id) && sameText(a.appId, b.appId) && sameText(a.appLabel, b.appLabel) &&
         sameText(a.icon, b.icon) && sameText(a.color, b.color) && sameText(a.title, b.title) &&
         sameText(a.message, b.message) && a.delayMs == b.delayMs &&
         a.sound.has_value() == b.sound.has_value() && (!a.sound || sameText(*a.sound, *b.sound));
}

}  // namespace brisklet
