#pragma once

#include "lockscreen/kept.h"
#include "model/sequence_document.h"

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>
#include <optional>
#include <utility>

namespace brisklet {

/// The picture scaled uniformly to cover `pixels`, centred and cut off at the edges.
[[nodiscard]] QImage photoFill(const QImage& photo, const QSize& pixels);

/// Whether a photo whose file changes, or goes, becomes another wallpaper.
enum class PhotoChanges { Followed, Ignored };

/// What decides a wallpaper's picture. For a built-in one only `name` is set.
struct WallpaperOrigin {
  QString name;
  QString path;
  qint64 bytes = -1;
  QDateTime changed;

  friend bool operator==(const WallpaperOrigin&, const WallpaperOrigin&) = default;
};

/// A wallpaper to be read, filling `pixels`.
struct WallpaperReading {
  WallpaperOrigin origin;
  QSize pixels;

  friend bool operator==(const WallpaperReading&, const WallpaperReading&) = default;
};

/// Holds the wallpaper of the document last asked for, at the size last asked for. A custom photo is looked
/// at every time, unless its changes are ignored, and read again only when its path, size or time of change
/// differs.
class WallpaperSource {
 public:
  /// The document's wallpaper filling `pixels`: its photo or built-in picture, built-in "one" where there is
  /// no such picture or no readable photo, and plain "#9bb4be" without even that. Never fails. The same
  /// image (equal `cacheKey()`) until something changes.
  [[nodiscard]] const QImage& filled(const SequenceDocument& document, const QSize& pixels,
                                     PhotoChanges changes = PhotoChanges::Followed);

  /// Looks at the photo again next time, even if its changes are ignored.
  void expectOtherPhoto() { asked_.reset(); }

  /// From now on a photo that has not been read is not read by `filled`, which gives the former wallpaper
  /// instead, if there is one. `unread` tells what to read, on any thread, and then to `take`.
  void leavePhotosToOthers() { readsPhotos_ = false; }
  [[nodiscard]] const std::optional<WallpaperReading>& unread() const { return unread_; }
  [[nodiscard]] static QImage read(const WallpaperReading& reading);
  void take(WallpaperReading reading, QImage picture) { print_.put(std::move(reading), std::move(picture)); }

  /// The picture last asked for.
  [[nodiscard]] const QImage& last() const { return image_.last(); }

 private:
  [[nodiscard]] static WallpaperOrigin originOf(const SequenceDocument& document);

  /// What the document said, and what it meant then.
  std::optional<std::pair<QString, QString>> asked_;
  WallpaperOrigin origin_;
  bool readsPhotos_ = true;
  std::optional<WallpaperReading> unread_;
  /// The picture at the size of a movie's frame, from which others are made.
  Kept<WallpaperReading, QImage> print_;
  Kept<std::pair<WallpaperReading, QSize>, QImage> image_;
};

}  // namespace brisklet
