#include "model/sequence_document.h"

#include "model/text.h"

#include <QLocale>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

const SequenceDocument& SequenceDocument::blank() {
  static const SequenceDocument document{
      .title = u"Untitled"_s,
      .wallpaper = u"one"_s,
      .wallpaperUrl = {},
      .dateLabel = iosDateLabel(),
      .timeLabel = u"9:41"_s,
      .maxVisible = 5,
      .playing = false,
      .loop = false,
      .notifications = {},
  };
  return document;
}

QString SequenceDocument::iosDateLabel(QDate date) {
  return QLocale::c().toString(date, u"ddd MMM d"_s);
}

double SequenceDocument::durationMs() const {
  if (notifications.isEmpty()) return 2400;
  double latestMs = notifications.first().delayMs;
  for (const Ping& ping : notifications) {
    if (ping.delayMs > latestMs) latestMs = ping.delayMs;
  }
  return latestMs + 1800;
}

QList<Ping> SequenceDocument::visiblePings(double timeMs) const {
  const auto mostCards = std::max<qint64>(maxVisible, 1);
  // Newest first is document order reversed, so the walk goes backwards and stops once enough are found.
  QList<Ping> newestFirst;
  for (auto ping = notifications.crbegin(); ping != notifications.crend(); ++ping) {
    if (newestFirst.size() == mostCards) break;
    if (ping->delayMs <= timeMs) newestFirst.append(*ping);
  }
  return newestFirst;
}

bool operator==(const SequenceDocument& a, const SequenceDocument& b) {
  return sameText(a.title, b.title) && sameText(a.wallpaper, b.wallpaper) &&
         sameText(a.wallpaperUrl, b.wallpaperUrl) && sameText(a.dateLabel, b.dateLabel) &&
         sameText(a.timeLabel, b.timeLabel) && a.maxVisible == b.maxVisible && a.playing == b.playing &&
         a.loop == b.loop && a.notifications == b.notifications;
}

}  // namespace brisklet
