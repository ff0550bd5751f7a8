#pragma once

#include "model/sequence_document.h"

#include <QList>
#include <QString>

namespace brisklet {

/// A wallpaper on which cards may stand.
struct Backdrop {
  QString name;
  QString wallpaper;
  QString wallpaperUrl;
};

/// The built-in wallpapers, then photos that are as hard on glass as a photo can be, written into `folder`:
/// white, black, full of small contrasts, and of saturated colours.
[[nodiscard]] QList<Backdrop> hardBackdrops(const QString& folder);

[[nodiscard]] Ping pingOf(const QString& appId, const QString& title, const QString& message,
                          double delayMs = 0);

/// A document with fixed labels over a backdrop, without pings.
[[nodiscard]] SequenceDocument documentOn(const Backdrop& backdrop);

/// The same with the first `count` of six everyday pings.
[[nodiscard]] SequenceDocument documentOn(const Backdrop& backdrop, int count);

}  // namespace brisklet
