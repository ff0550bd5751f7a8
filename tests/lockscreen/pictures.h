#pragma once

#include "lockscreen/lock_screen_view.h"
#include "model/catalogue.h"
#include "support/ink_box.h"

#include <QColor>
#include <QImage>
#include <QString>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace brisklet {

inline Ping pingOf(const QString& appId, const QString& title, const QString& message, double delayMs = 0) {
  static int number = 0;
  const AppPreset& preset = AppPreset::named(appId);
  return {
      QString::number(++number), appId, preset.label, preset.icon, preset.color, title, message, delayMs, {}};
}

/// A document with fixed labels, whose pings land a second apart.
inline SequenceDocument documentWith(int pings, const QString& wallpaper = u"two"_s) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = u"Mon Nov 16"_s;
  document.timeLabel = u"9:41"_s;
  document.wallpaper = wallpaper;
  for (int i = 0; i < pings; ++i)
    document.notifications.append(
        pingOf(AppPreset::all().at(i % 5).id, u"Sender"_s, u"Message"_s, i * 1000.0));
  return document;
}

inline QImage captured(const SequenceDocument& document, double elapsedMs = SequencePlayer::finishedMs) {
  SequencePlayer player(document);
  player.setElapsedMs(elapsedMs);
  LockScreenCache cache;
  return captureFrame({document, player, Rendering::Movie}, cache);
}

/// The largest difference of a channel between two pictures within a rectangle.
inline int greatestDifference(const QImage& a, const QImage& b, const QRect& within) {
  int greatest = 0;
  for (int y = within.top(); y <= within.bottom(); ++y) {
    for (int x = within.left(); x <= within.right(); ++x) {
      const QColor p = a.pixelColor(x, y), q = b.pixelColor(x, y);
      greatest = std::max({greatest, std::abs(p.red() - q.red()), std::abs(p.green() - q.green()),
                           std::abs(p.blue() - q.blue())});
    }
  }
  return greatest;
}

}  // namespace brisklet
