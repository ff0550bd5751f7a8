#pragma once

#include "model/ping.h"

#include <QDate>
#include <QList>
#include <QString>

namespace brisklet {

/// A whole sequence: the lock screen's settings and the pings that arrive on it. A plain value.
struct SequenceDocument {
  QString title;
  /// The id of a built-in wallpaper, or "custom" for the photo at `wallpaperUrl`.
  QString wallpaper;
  /// The path of the user's stored photo; empty when there is none.
  QString wallpaperUrl;
  QString dateLabel;
  QString timeLabel;
  /// The most cards shown at once; values below 1 act as 1.
  qint64 maxVisible = 0;
  /// Stored only.
  bool playing = false;
  /// Stored only: playback never loops.
  bool loop = false;
  /// In document order, which need not be the order of landing.
  QList<Ping> notifications;

  /// The blank sequence, the same value all through a run: its date is that of the first use.
  [[nodiscard]] static const SequenceDocument& blank();

  /// A day's date line, for example "Mon Nov 16"; today in the local time zone unless told.
  [[nodiscard]] static QString iosDateLabel(QDate date = QDate::currentDate());

  /// The latest landing time and 1800 ms; 2400 ms without pings.
  [[nodiscard]] double durationMs() const;

  /// The pings on screen at `timeMs`, newest (last in document order) first. Positive infinity means the
  /// finished sequence.
  [[nodiscard]] QList<Ping> visiblePings(double timeMs) const;

  friend bool operator==(const SequenceDocument& a, const SequenceDocument& b);
};

}  // namespace brisklet
